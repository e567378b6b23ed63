#include "vumo/accessor/Accessor.h"

#include "tests/accessor/AccessorFixture.h"
#include "tests/support/RandomNumbers.h"

#include <cmath>
#include <cstring>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <typeinfo>

namespace vumo::test
{
namespace
{
using AccessorTest = AccessorFixture;

/// Does in performRead what a test wants.
class ScriptedAccessor : public Accessor
{
public:
    using Script = std::function<bool(Accessor& accessor, std::string& errors)>;

    ScriptedAccessor() = default;
    explicit ScriptedAccessor(Script script) : mScript(std::move(script)) {}

protected:
    bool performRead(const std::set<std::string>* /*structureNames*/, const std::set<std::string>* /*associationNames*/,
                     std::string& errors) override
    {
        return mScript(*this, errors);
    }

private:
    Script mScript;
};

/// What an accessor does that reads two structures and one node's metadata.
void registerAndStore(Accessor& accessor)
{
    EXPECT_TRUE(Structure::allStructures().empty());
    Structure::registerStructure(*new Structure("B"));
    Structure::registerStructure(*new Structure("A"));
    accessor.associations()["Body"];
}

/// Registers a structure "A" of its own while it lives.
class RegisteredA
{
public:
    RegisteredA() : mStructure(valueStructure("A")) { Structure::registerStructure(*mStructure); }
    ~RegisteredA() { Structure::deregisterStructure(*mStructure); }

    const Structure* get() const { return mStructure.get(); }

private:
    Ref<Structure> mStructure;
};

std::string namesIn(const Accessor& accessor)
{
    std::string names;
    for (const Structure* structure : accessor.structures())
        names += structure->name();
    return names;
}

TEST_F(AccessorTest, Read_KeepsWhatTheFileDeclaresAndLeavesTheRegistryAlone)
{
    const RegisteredA own;
    ScriptedAccessor accessor([](Accessor& self, std::string&) {
        registerAndStore(self);
        return true;
    });
    std::string errors;
    EXPECT_TRUE(accessor.read("some file", errors));
    EXPECT_EQ(accessor.fileName(), "some file");
    EXPECT_EQ(namesIn(accessor), "AB");
    EXPECT_EQ(accessor.associations().count("Body"), 1U);
    EXPECT_EQ((*accessor.structures().begin())->refCount(), 1);

    EXPECT_EQ(Structure::structureByName("A"), own.get());
    EXPECT_EQ(Structure::allStructures().size(), 1U);
    EXPECT_EQ(own.get()->memberCount(), 1U);

    accessor.clear();
    EXPECT_EQ(accessor.fileName(), "some file");
}

TEST_F(AccessorTest, Read_FindsStructuresByNameWhateverBecomesOfThem)
{
    using Change = std::function<void(Structure & first, Structure & second)>;
    const struct
    {
        const char* what;
        Change change;
        const char* foundAsA; // of "first" and "second", which lie in memory in this order
        const char* foundAsZ;
    } cases[] = {
        {"nothing", [](Structure&, Structure&) {}, "first", "none"},
        {"renamed", [](Structure& first, Structure&) { first.setName("Z"); }, "second", "first"},
        {"assigned", [](Structure& first, Structure&) { first = Structure("Z"); }, "second", "first"},
        {"gone", [](Structure& first, Structure&) { Structure::deregisterStructure(first); }, "second", "none"},
        {"all gone", [](Structure&, Structure&) { Structure::deleteAllStructures(); }, "none", "none"},
        {"erased", [](Structure& first, Structure&) { Structure::allStructures().erase(&first); }, "second", "none"},
        {"replaced",
         [](Structure& first, Structure&) {
             Structure::deregisterStructure(first);
             first.setName("Z");
             Structure::registerStructure(first);
         },
         "second", "first"},
        {"read meanwhile",
         [](Structure&, Structure&) {
             ScriptedAccessor inner([](Accessor& self, std::string&) {
                 EXPECT_EQ(Structure::structureByName("A"), nullptr);
                 registerAndStore(self);
                 return false;
             });
             std::string errors;
             inner.read("inner", errors);
         },
         "first", "none"},
    };
    for (const auto& expected : cases)
    {
        SCOPED_TRACE(expected.what);
        const Ref<Structure> one = valueStructure("A");
        const Ref<Structure> two = valueStructure("A");
        Structure& first = *std::min(one.get(), two.get());
        Structure& second = *std::max(one.get(), two.get());
        second.addMember(Member::kInt8, 1, "more");
        const auto found = [&](const char* name) {
            const Structure* const structure = Structure::structureByName(name);
            return structure == &first ? "first" : structure == &second ? "second" : structure ? "other" : "none";
        };
        ScriptedAccessor accessor([&](Accessor&, std::string&) {
            EXPECT_TRUE(Structure::registerStructure(first));
            EXPECT_TRUE(Structure::registerStructure(second));
            expected.change(first, second);
            EXPECT_STREQ(found("A"), expected.foundAsA);
            EXPECT_STREQ(found("Z"), expected.foundAsZ);
            for (Structure* const structure : {&first, &second})
            {
                const bool isThere = Structure::allStructures().count(structure) > 0;
                const Ref<Structure> copy(new Structure(*structure));
                EXPECT_EQ(Structure::registerStructure(*copy), !isThere);
                EXPECT_EQ(Structure::deregisterStructure(*copy), !isThere);
            }
            return false;
        });
        std::string errors;
        accessor.read("some file", errors);
        if (first.refCount() > 1)
            first.unref(); // erased behind the registry's back
    }
}

TEST_F(AccessorTest, Read_LeavesNothingInTheAccessorHoweverItFails)
{
    const struct
    {
        const char* what;
        bool throws;
        ScriptedAccessor::Script ending;
    } cases[] = {
        {"false", false, [](Accessor&, std::string&) { return false; }},
        {"a standard exception", true, [](Accessor&, std::string&) -> bool { throw std::runtime_error("x"); }},
        {"an exception of any type", true, [](Accessor&, std::string&) -> bool { throw 5; }},
    };
    for (const auto& failure : cases)
    {
        SCOPED_TRACE(failure.what);
        const RegisteredA own;
        ScriptedAccessor accessor([&](Accessor& self, std::string& errors) {
            errors += "seen";
            registerAndStore(self);
            return failure.ending(self, errors);
        });
        std::string errors = "kept, ";
        if (failure.throws)
            EXPECT_ANY_THROW(accessor.read("some file", errors));
        else
            EXPECT_FALSE(accessor.read("some file", errors));
        EXPECT_EQ(errors, "kept, seen");
        EXPECT_TRUE(accessor.structures().empty());
        EXPECT_TRUE(accessor.associations().empty());
        EXPECT_EQ(accessor.fileName(), "some file");
        EXPECT_EQ(Structure::allStructures().size(), 1U);
        EXPECT_EQ(Structure::structureByName("A"), own.get());
    }
}

TEST_F(AccessorTest, Read_RefusesWhatSomebodyElseIsWriting)
{
    const ScratchFile file(".bin");
    const struct
    {
        const char* what;
        std::function<void()> meanwhile;
        bool isRefused;
    } cases[] = {
        {"nothing", [] {}, false},
        {"a longer file", [&] { std::ofstream(file.name(), std::ios::app) << "x"; }, true},
        {"another byte", [&] { std::fstream(file.name()) << "x"; }, true},
        {"a record", [&] { file.setRecord("x"); }, true},
        {"other permissions", [&] { std::filesystem::permissions(file.name(), std::filesystem::perms::all); }, false},
        {"another file",
         [&] {
             std::ofstream(file.name() + "2") << "xyz";
             std::filesystem::rename(file.name() + "2", file.name());
         },
         false},
        {"none", [&] { std::remove(file.name().c_str()); }, false},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.what);
        file.setBytes("0123");
        std::filesystem::last_write_time(file.name(), {}); // the clock of files is coarse
        ScriptedAccessor accessor([&](Accessor& self, std::string&) {
            registerAndStore(self);
            row.meanwhile();
            return true;
        });
        std::string errors;
        EXPECT_EQ(accessor.read(file.name(), errors), !row.isRefused);
        EXPECT_EQ(errors, row.isRefused ? file.name() + " is being written by somebody else.\n" : "");
        EXPECT_EQ(accessor.structures().empty(), row.isRefused);
        EXPECT_EQ(accessor.checksum() == 0, row.isRefused);
        std::remove(file.recordName().c_str());
    }
}

TEST_F(AccessorTest, Read_TriesAgainWhileSomebodyElseIsWriting)
{
    const ScratchFile file(".bin");
    file.setBytes("0123");
    for (const unsigned int wait : {0U, 60000U})
    {
        int tries = 0;
        ScriptedAccessor accessor([&](Accessor& self, std::string& errors) {
            registerAndStore(self);
            if (++tries > 2)
                return true;
            self.associations()["Half"];
            errors = "half";
            std::ofstream(file.name(), std::ios::app) << "x";
            return false;
        });
        accessor.setLockWait(wait);
        std::string errors = "kept, ";
        EXPECT_EQ(accessor.read(file.name(), errors), wait > 0);
        EXPECT_EQ(tries, wait > 0 ? 3 : 1);
        EXPECT_EQ(errors, wait > 0 ? "kept, " : "half" + file.name() + " is being written by somebody else.\n");
        EXPECT_EQ(accessor.associations().count("Half"), 0U);
        EXPECT_EQ(namesIn(accessor), wait > 0 ? "AB" : "");
    }
}

TEST_F(AccessorTest, Read_DoesNotReleaseTheStructuresOfAnEarlierRead)
{
    ScriptedAccessor accessor([](Accessor& self, std::string&) {
        registerAndStore(self);
        return true;
    });
    std::string errors;
    ASSERT_TRUE(accessor.read("file", errors));
    const Accessor::StructureSet earlier = accessor.structures();
    accessor.associations()["Ghost"];
    ASSERT_TRUE(accessor.read(accessor.fileName(), errors));
    EXPECT_EQ(accessor.associations().count("Ghost"), 0U);
    EXPECT_EQ(accessor.fileName(), "file");
    EXPECT_EQ(namesIn(accessor), "AB");
    for (const Structure* structure : earlier)
    {
        EXPECT_EQ(structure->refCount(), 1);
        EXPECT_EQ(accessor.structures().count(structure), 1U) << "of that name";
        structure->unref();
    }
}

TEST_F(AccessorTest, SetStructures_ReferencesTheNewAndReleasesTheOld)
{
    const Ref<Structure> kept = valueStructure("Kept");
    auto* replaced = new Structure("Replaced"); // alive through the accessor alone
    const unsigned long long alive = Structure::_objectsAlive;
    {
        ScriptedAccessor accessor;
        accessor.setStructures({kept.get(), replaced});
        EXPECT_EQ(kept->refCount(), 2);
        EXPECT_EQ(replaced->refCount(), 1);
        accessor.setStructures(accessor.structures());
        EXPECT_EQ(replaced->refCount(), 1);
        accessor.setStructures({kept.get()});
        EXPECT_EQ(kept->refCount(), 2);
        EXPECT_EQ(Structure::_objectsAlive, alive - 1);

        EXPECT_THROW(accessor.setStructures({nullptr}), std::invalid_argument);
        EXPECT_EQ(namesIn(accessor), "Kept");
    }
    EXPECT_EQ(kept->refCount(), 1);
}

TEST_F(AccessorTest, StructureSet_OrdersByTheBytesOfTheNames)
{
    const Accessor::StructureNameLessThan isLess;
    const Structure upper("Z");
    const Structure lower("a");
    const Structure accented("\xC3\xA9");
    EXPECT_TRUE(isLess(&upper, &lower));
    EXPECT_FALSE(isLess(&lower, &upper));
    EXPECT_FALSE(isLess(&lower, &lower));
    EXPECT_TRUE(isLess(&lower, &accented));
    const std::string thrown = "invalid_argument: Null Structure found in StructureSet.";
    EXPECT_EQ(thrownBy([&] { isLess(&upper, nullptr); }), thrown);
    EXPECT_EQ(thrownBy([&] { isLess(nullptr, &upper); }), thrown);
}

TEST_F(AccessorTest, Write_IsRefusedByAnAccessorThatCannotWrite)
{
    const ScriptedAccessor accessor;
    std::string errors = "kept, ";
    EXPECT_FALSE(accessor.write(errors));
    EXPECT_EQ(errors, std::string("kept, ") + typeid(ScriptedAccessor).name() + " does not implement write");
    errors.clear();
    Accessor::WriteCost cost;
    EXPECT_FALSE(accessor.estimateWrite(cost, errors)) << "where a write() knows nothing of estimates it would write";
    EXPECT_EQ(errors, "Files like  can be written, but no write can be estimated.\n");
    EXPECT_TRUE(accessor.isFileSupported("anything"));
}

TEST_F(AccessorTest, AccessorByExtension_TakesWhatFollowsTheLastDotInAnyCase)
{
    const AccessorFactory<ScriptedAccessor> factory("TesT");
    const struct
    {
        const char* fileName;
        bool isFound;
    } cases[] = {
        {"scene.ob", true},      {"scene.OB", true},   {"a.test.Ob", true},     {"ob", true},       {".ob", true},
        {"scene.tEST", true},    {"scene.ob.", false}, {"scene.", false},       {"scene", false},   {"", false},
        {"dir.ob/scene", false}, {"scene.ob2", false}, {"scene.ob.zip", false}, {"scene.o", false}, {".", false},
    };
    for (const auto& sample : cases)
        EXPECT_EQ(Accessor::accessorByExtension(sample.fileName) != nullptr, sample.isFound) << sample.fileName;
}

TEST_F(AccessorTest, Factories_TheFirstOneOfAnExtensionStaysUntilItIsDestroyed)
{
    auto first = std::make_unique<AccessorFactory<OvriBinaryFileAccessor>>("Ext");
    const auto second = std::make_unique<AccessorFactory<ScriptedAccessor>>("eXT");
    const AccessorFactory<ScriptedAccessor> nameless("");
    const std::set<std::string> both = Accessor::supportedExtensions();
    EXPECT_THAT(both, testing::IsSupersetOf({"oa", "ob", "ext"}));
    EXPECT_EQ(both.count(""), 0U);

    const auto isBinary = [](const char* name) {
        const auto accessor = Accessor::accessorByExtension(name);
        return dynamic_cast<OvriBinaryFileAccessor*>(accessor.get()) != nullptr;
    };
    EXPECT_TRUE(isBinary("ext"));
    first.reset();
    EXPECT_EQ(Accessor::accessorByExtension("ext"), nullptr) << "the second one was never registered";
    EXPECT_TRUE(isBinary("ob"));
}

TEST_F(AccessorTest, Read_AsksForTheMetadataOnceAndInLargePieces)
{
    const struct
    {
        const char* ending;
        std::string bare;
        std::uint64_t calls;
    } cases[] = {
        {".oa", "//Ovri ASCII 2014 scene\n" + std::string(1 << 20, 'x') + "\nselect -ne :a;\n// End of it\n", 40},
        {".ob", sceneWith(example::cameraChunk()), 12},
    };
    const Ref<Structure> note = Structure::make("Note", {{Member::kString, 1, "Text"}});
    for (const auto& sample : cases)
    {
        SCOPED_TRACE(sample.ending);
        const ScratchFile file(sample.ending);
        file.setBytes(sample.bare);
        Stream notes(*note, "notes");
        for (unsigned int i = 0; i < 1100; ++i)
            setValue(notes, i, std::string(950, 'x'));
        const auto writer = readScene(file.name());
        writer->setStructures({note.get()});
        writer->associations()["Body"].channel("vertex").setDataStream(notes);
        std::string errors;
        ASSERT_TRUE(writer->write(errors)) << errors;
        const double metadata = static_cast<double>(file.bytes().size() - sample.bare.size());

        const ReadCount before = readsByProcess();
        const ReadCount counting = readsByProcess();
        const auto accessor = readScene(file.name());
        const ReadCount after = readsByProcess();
        EXPECT_LE(after.calls - counting.calls - (counting.calls - before.calls), sample.calls);
        EXPECT_LE(static_cast<double>(after.bytes - counting.bytes), 1.05 * metadata);
        EXPECT_EQ(valueAt(*accessor, "Body", "vertex", "notes", 1099), std::string(950, 'x'));
    }
}

using AccessorPropertyTest = AccessorFixture;

TEST_F(AccessorPropertyTest, RichScenesWithExactNumbers_KeepTheirBitsAndTheTextsThatSixDigitsHold)
{
    const Ref<Structure> sample =
        Structure::make("Sample", {{Member::kFloat, 3, "f"}, {Member::kDouble, 3, "d"}, {Member::kString, 1, "label"}});
    const std::size_t size = Member::offset(sample->member(2)); // of its numbers, which begin an element
    RandomNumbers random;
    SCOPED_TRACE(random.seedText());
    Stream samples(*sample, "samples");
    for (unsigned int i = 0; i < 300; ++i)
    {
        Handle element(*sample);
        setText(element, "label", "sample");
        for (unsigned int value = 0; value < 3; ++value)
        {
            const float single = random.fromBits<float>();
            const double number = random.fromBits<double>();
            element.setPositionByMemberName("f");
            element.set(value, std::isfinite(single) ? single : -0.0F);
            element.setPositionByMemberName("d");
            element.set(value, std::isfinite(number) ? number : -0.0);
        }
        samples.setElement(i, element);
    }
    for (const RichScene& scene : kRichScenes)
    {
        SCOPED_TRACE(scene.ending);
        const ScratchFile file(scene.ending);
        file.setBytes(scene.bytes);
        auto accessor = readScene(file.name());
        EXPECT_EQ(accessor->numbers(), kSixDigits);
        accessor->setNumbers(kExact);
        edit(*accessor);
        std::string errors;
        ASSERT_TRUE(accessor->write(errors)) << errors;
        EXPECT_EQ(file.bytes(), scene.edited);

        accessor->associations()["Numbers"].channel("vertex").setDataStream(samples);
        for (const char* const label : {"first", "second"})
        {
            ASSERT_TRUE(accessor->write(errors)) << errors;
            accessor = readScene(file.name());
            accessor->setNumbers(kExact);
            Stream& read = *accessor->associations()["Numbers"].channel("vertex").findDataStream("samples");
            for (unsigned int i = 0; i < 300; ++i)
                ASSERT_EQ(std::memcmp(read.element(i).data(), samples.element(i).data(), size), 0) << i;
            Handle first = read.element(0U);
            setText(first, "label", label);
        }
    }
}

TEST_F(AccessorTest, ReadFile_SaysWhyThereIsNoAccessor)
{
    std::string errors = "kept, ";
    EXPECT_EQ(Accessor::readFile("scene.txt", errors), nullptr);
    EXPECT_EQ(errors, "kept, No factory registered for type of file \"scene.txt\"");
    EXPECT_EQ(Accessor::readFile("no such file.ob", errors), nullptr);
    EXPECT_EQ(errors, "File not valid.");
}
} // namespace
} // namespace vumo::test
