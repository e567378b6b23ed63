#include "tests/accessor/AccessorFixture.h"
#include "tests/accessor/FileCallScript.h"
#include "tests/support/Allocations.h"
#include "tests/support/ScratchLocale.h"

#include <iconv.h>

namespace vumo::test
{
namespace
{
/// Lets each allocation of an action fail in turn.
class AllocationFailureTest : public AccessorFixture
{
protected:
    /// Calls `test` with both kinds of files for each allocation.
    template <class Test>
    static void withBothScenes(const Test& test)
    {
        for (const RichScene& kind : kRichScenes)
        {
            SCOPED_TRACE(kind.ending);
            const ScratchFile file(kind.ending);
            forEachAllocation([&](std::size_t n, bool& hasFailed) {
                file.setBytes(kind.bytes);
                test(kind, file, n, hasFailed);
            });
        }
    }

    /// One that has read what it edits alone may keep the rest.
    static std::unique_ptr<Accessor> editorOf(const ScratchFile& file, bool keepsRest = false)
    {
        auto editor = Accessor::accessorByExtension(file.name());
        const std::set<std::string> names = {"body"};
        std::string errors;
        editor->setUnread(keepsRest ? Accessor::kKeep : Accessor::kDrop);
        EXPECT_TRUE(editor->read(file.name(), nullptr, keepsRest ? &names : nullptr, errors)) << errors;
        edit(*editor);
        return editor;
    }

    /// Ends a process in the middle of a write.
    static void crash(const Accessor& editor)
    {
        FileCallScript script = FileCallScript::at("write scene", 1, FileCallScript::kExitHalfway);
        std::string errors;
        EXPECT_TRUE(isEndedBy(script, [&] { return editor.write(errors); }));
    }
};

TEST_F(AllocationFailureTest, Reads_GiveAllOrNothing)
{
    withBothScenes([](const RichScene&, const ScratchFile& file, std::size_t n, bool& hasFailed) {
        const auto accessor = Accessor::accessorByExtension(file.name());
        std::string errors;
        const bool isRead = succeedsWithout(n, hasFailed, [&] { return accessor->read(file.name(), errors); });
        EXPECT_TRUE(Structure::allStructures().empty());
        EXPECT_EQ(accessor->structures().size(), isRead ? 3U : 0U);
        EXPECT_EQ(accessor->associations().size(), isRead ? 3U : 0U);
        accessor->clear();
        EXPECT_TRUE(accessor->read(file.name(), errors)) << errors;
    });
}

TEST_F(AllocationFailureTest, RichScenes_AreWrittenAsAWholeOrNotAtAllAndThenAgain)
{
    for (const bool keepsRest : {false, true})
    {
        withBothScenes([keepsRest](const RichScene& kind, const ScratchFile& file, std::size_t n, bool& hasFailed) {
            const auto editor = editorOf(file, keepsRest);
            std::string errors;
            const bool isWritten = succeedsWithout(n, hasFailed, [&] { return editor->write(errors); });
            EXPECT_EQ(file.bytes(), isWritten ? kind.edited : kind.bytes);
            EXPECT_FALSE(file.hasRecord());
            EXPECT_TRUE(Structure::allStructures().empty());
            editor->setDurability(Accessor::kMemoryOnly);
            EXPECT_TRUE(editor->write(errors)) << errors;
            EXPECT_EQ(file.bytes(), kind.edited);
        });
    }
}

TEST_F(AllocationFailureTest, RichScenesThatACrashLeft_AreRestoredOrStayAsTheyAre)
{
    std::string torn;
    std::string record;
    withBothScenes([&](const RichScene& kind, const ScratchFile& file, std::size_t n, bool& hasFailed) {
        if (n == 0)
        {
            crash(*editorOf(file));
            torn = file.bytes();
            record = file.record();
            ASSERT_NE(torn, kind.bytes);
        }
        file.setBytes(torn);
        file.setRecord(record);
        std::string errors;
        const bool isDone = succeedsWithout(n, hasFailed, [&] { return Accessor::recover(file.name(), errors); });
        const bool isRestored = !file.hasRecord();
        EXPECT_EQ(isRestored, isDone) << errors;
        EXPECT_EQ(file.bytes(), isRestored ? kind.bytes : torn);
        EXPECT_TRUE(Accessor::recover(file.name(), errors)) << errors;
        EXPECT_EQ(file.bytes(), kind.bytes);
    });
}

TEST_F(AllocationFailureTest, AText_IsConvertedOrNotWritten)
{
    const ScratchLocale locale("ISO-8859-1");
    if (!locale.isSet())
        GTEST_SKIP() << "localedef cannot make a locale here";
    // The C library takes a module that it could not load for one that does not exist. These keep both loaded.
    const iconv_t kept[] = {iconv_open("UTF-8", ""), iconv_open("", "UTF-8")};
    const Ref<Structure> note = Structure::make("Note", {{Member::kString, 1, "Text"}});
    const Associations notes = associationsOf("scene", "notes", *note, 0, "\xE9");
    forEachAllocation([&](std::size_t n, bool& hasFailed) {
        std::ostringstream out;
        std::string errors;
        const bool isWritten = succeedsWithout(
            n, hasFailed, [&] { return BinaryWriter::writeAssociationsChunk(out, "SMTD", "", notes, &errors); });
        EXPECT_TRUE(isWritten || hasFailed) << errors;
        EXPECT_EQ(out.str().find("\"\xC3\xA9\"") != std::string::npos, isWritten);
    });
    for (const iconv_t conversion : kept)
        iconv_close(conversion);
}
} // namespace
} // namespace vumo::test
