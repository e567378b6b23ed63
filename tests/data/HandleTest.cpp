#include "vumo/data/Handle.h"

#include "tests/support/DataFixtures.h"

#include <utility>
#include <vector>

namespace vumo::Data
{
namespace
{
using HandleTest = test::RecordTest;
using HandleGoldenTest = HandleTest;

TEST_F(HandleTest, Copies_BorrowAndOwnersRelease)
{
    Handle owner = test::record(*mRecord, 7, "seven");
    Handle borrower(owner);
    EXPECT_EQ(borrower.data(), owner.data());
    EXPECT_FALSE(owner.makeUnique());
    EXPECT_TRUE(borrower.makeUnique());
    EXPECT_FALSE(borrower.makeUnique());
    test::setText(borrower, "label", "changed");
    EXPECT_EQ(test::recordText(owner), "7 seven");
    borrower = owner; // releases its own block
    EXPECT_EQ(borrower.data(), owner.data());
}

TEST_F(HandleTest, AssignmentFromWhatBorrowsItsOwnBlock_KeepsTheBlock)
{
    Handle handle = test::record(*mRecord, 7, "seven");
    const Handle& itself = handle;
    handle = itself;
    handle = Handle(handle);
    const Handle copy(handle);
    handle = copy;
    EXPECT_TRUE(handle.ownsData());
    handle.pointToData(handle.data(), true);
    EXPECT_EQ(test::recordText(handle), "7 seven");
    EXPECT_FALSE(handle.makeUnique()); // it still owns the block
    handle.swap(handle);
    Handle& alias = handle;
    handle = std::move(alias);
    EXPECT_EQ(test::recordText(handle), "7 seven");
}

TEST_F(HandleTest, TemporariesAndMoves_HandOverTheBlock)
{
    Handle handle;
    handle = test::record(*mRecord, 7, "seven");
    Handle taker(std::move(handle));
    EXPECT_FALSE(handle.hasData()); // NOLINT(bugprone-use-after-move): that is what it promises
    EXPECT_TRUE(handle.usesStructure(*mRecord));
    EXPECT_EQ(handle.memberIndex(), taker.memberIndex());
    Handle other = test::record(*mRecord, 8, "eight");
    taker.swap(other);
    EXPECT_EQ(test::recordText(taker), "8 eight");
    EXPECT_EQ(test::recordText(other), "7 seven");
    other.pointToData(nullptr, true);
    EXPECT_FALSE(other.hasData());
}

TEST_F(HandleTest, Positions_AreFoundOrLeftAtTheEnd)
{
    Handle handle(*mRecord);
    EXPECT_EQ(handle.dataType(), Member::kUInt8);
    EXPECT_TRUE(handle.setPositionByMemberIndex(2));
    EXPECT_TRUE(handle.setPositionByMemberIndex(1));
    EXPECT_EQ(handle.dataType(), Member::kString);
    EXPECT_EQ(handle.dataLength(), 1U);
    EXPECT_FALSE(handle.setPositionByMemberName(nullptr));
    EXPECT_EQ(handle.dataType(), Member::kString);
    EXPECT_FALSE(handle.setPositionByMemberName("Label"));
    EXPECT_EQ(handle.dataLength(), 0U);
    EXPECT_TRUE(handle.setPositionByMemberName("flag"));
    for (unsigned int missing : {3U, 4294967295U})
    {
        EXPECT_TRUE(handle.setPositionByMemberIndex(0));
        EXPECT_FALSE(handle.setPositionByMemberIndex(missing)) << missing;
        EXPECT_EQ(handle.setPositionByMemberIndex(missing), missing == handle.memberIndex()) << missing;
    }
    EXPECT_EQ(handle.dataType(), Member::kInvalidType);
    EXPECT_TRUE(handle.setPositionByMemberIndex(0));
    EXPECT_TRUE(Handle().setPositionByMemberIndex(4294967295U));
}

TEST_F(HandleTest, GetAndSet_MoveValuesWhereverTheyLie)
{
    const auto structure = Structure::make("S", {{Member::kInt8, 1, "odd"},
                                                 {Member::kDouble, 2, "pair"},
                                                 {Member::kString, 2, "texts"},
                                                 {Member::kFloatMatrix4x4, 2, "places"}});
    std::vector<char> block(structure->totalSize() + 1);
    Handle handle(*structure, block.data() + 1); // at an odd address, as elements of odd size have
    const Handle& reader = handle;
    EXPECT_TRUE(handle.set<std::int8_t>(0, -7));
    EXPECT_EQ(reader.get<std::int8_t>(), -7);
    handle.setPositionByMemberName("pair");
    EXPECT_TRUE(handle.set(1, 2.5));
    EXPECT_FALSE(handle.set(2, 2.5));
    EXPECT_FALSE(handle.set(0, 2.5F));
    EXPECT_FALSE(handle.set(0, "2.5"));
    EXPECT_EQ(reader.get<double>(0), 0);
    EXPECT_EQ(reader.get<double>(1), 2.5);
    EXPECT_EQ(reader.get<double>(2), std::nullopt);
    EXPECT_EQ(reader.get<float>(1), std::nullopt);
    EXPECT_EQ(reader.get<std::string>(1), std::nullopt);
    handle.setPositionByMemberName("texts");
    EXPECT_EQ(reader.get<std::string>(0), "");
    EXPECT_EQ(reader.values<char*>()[0], nullptr);
    EXPECT_TRUE(handle.set(0, "first"));
    EXPECT_TRUE(handle.set(1, *handle.get<const char*>(0) + 1));
    EXPECT_TRUE(handle.set(0, *handle.get<const char*>(0) + 2)); // a part of the text that it replaces
    EXPECT_FALSE(handle.set(0, std::string("cut\0short", 9)));
    EXPECT_EQ(*reader.get<std::string>(0) + *reader.get<std::string>(1), "rstirst");
    EXPECT_TRUE(handle.set(0, static_cast<const char*>(nullptr)));
    EXPECT_EQ(reader.get<const char*>(0), nullptr);
    handle.setPositionByMemberName("places");
    handle.values<float>().set(31, 1.5F);
    EXPECT_EQ(handle.str(1), "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 1.5");
    EXPECT_EQ(reader.values<float>().size(), 32U);
    structure->destroyChunk(handle.data());

    handle.setPositionByMemberName("absent");
    EXPECT_FALSE(handle.set(0, 0.5));
    EXPECT_EQ(reader.get<double>(), std::nullopt);
    EXPECT_EQ(Handle(*structure, nullptr).get<std::int8_t>(), std::nullopt);
    EXPECT_EQ(Handle(*structure, nullptr).values<std::int8_t>().size(), 0U);
}

TEST_F(HandleTest, TypedAccess_NeverConverts)
{
    for (unsigned int number = 0; number < Member::kInvalidType; ++number)
    {
        const auto type = static_cast<Member::eDataType>(number);
        const auto structure = Structure::make("S", {{Member::kUInt8, 8, "before"}, {type, 2, "values"}});
        Handle handle(*structure);
        handle.setPositionByMemberName("values");
        const void* const typed[] = {handle.asBoolean(), handle.asDouble(),         handle.asDoubleMatrix4x4(),
                                     handle.asFloat(),   handle.asFloatMatrix4x4(), handle.asInt8(),
                                     handle.asInt16(),   handle.asInt32(),          handle.asInt64(),
                                     handle.asString(),  handle.asUInt8(),          handle.asUInt16(),
                                     handle.asUInt32(),  handle.asUInt64()};
        for (unsigned int asked = 0; asked < Member::kInvalidType; ++asked)
        {
            const void* const expected = asked == number ? handle.data() + 8 : nullptr;
            EXPECT_EQ(typed[asked], expected) << Member::typeName(type) << " asked for as number " << asked;
            EXPECT_EQ(handle.asType(static_cast<Member::eDataType>(asked)), expected);
        }
        handle.setPositionByMemberName("none");
        EXPECT_EQ(handle.asType(Member::kInvalidType), nullptr);
    }
}

TEST_F(HandleTest, WithoutData_EverythingIsFalseNullOrTheFallback)
{
    const std::string row = "0.0 0.0 0.0 0.0";
    const std::string matrix = row + " " + row + " " + row + " " + row;
    const std::string fallbacks[] = {"false", "0.0", matrix, "0.0", matrix, "0", "0", "0", "0", "", "0", "0", "0", "0"};
    const char* const words[] = {"boolean", "double", "double matrix", "float", "float matrix", "Int8",   "Int16",
                                 "Int32",   "Int64",  "string",        "UInt8", "UInt16",       "UInt32", "UInt64"};
    for (unsigned int number = 0; number < Member::kInvalidType; ++number)
    {
        const auto type = static_cast<Member::eDataType>(number);
        SCOPED_TRACE(Member::typeName(type));
        const auto structure = Structure::make("S", {{type, 1, "value"}});
        Handle handle(*structure, nullptr);
        EXPECT_FALSE(handle.hasData() || handle.makeUnique() || handle.isDefault() || handle.isDefaultMember("value"));
        EXPECT_EQ(handle.asType(type), nullptr);
        EXPECT_EQ(handle.str(0), fallbacks[number]);
        std::string errors;
        EXPECT_EQ(handle.fromStr("1", 0, errors), 1);
        EXPECT_EQ(errors, std::string("Data not recognized as a ") + words[number] + "\n");
    }
    const Handle onNothing;
    EXPECT_EQ(onNothing.str(0), "");
    EXPECT_EQ(test::printed(&onNothing), "[]");
    EXPECT_TRUE(Handle(*mRecord).usesStructure(*mRecord));
    EXPECT_FALSE(Handle(*mRecord).usesStructure(*test::recordStructure())); // equal, but not the same
}

struct TextCase
{
    Member::eDataType type;
    const char* text;
    int errorCount;
    const char* result; // the text form afterwards; the value before is 1 ("true") of its type
    const char* message;
};

const char* const kBooleanHint = "'. Use 't', 'true', '1', 'f', 'false', '0' only.\n";

const TextCase kTextCases[] = {
    {Member::kBoolean, "True", 0, "true", ""},
    {Member::kBoolean, " \t f", 0, "false", ""},
    {Member::kBoolean, "0", 0, "false", ""},
    {Member::kBoolean, "F", 0, "false", ""},
    {Member::kBoolean, "False rest", 0, "false", ""},
    {Member::kBoolean, "TRUE", 1, "true", "Boolean on or about character 5 has invalid value 'TRUE"},
    {Member::kBoolean, "00 x", 1, "true", "Boolean on or about character 3 has invalid value '00"},
    {Member::kBoolean, "", 1, "true", "Boolean on or about character 0 has invalid value '"},
    {Member::kDouble, "3.14159265", 0, "3.14159", ""},
    {Member::kDouble, "-1e-300", 0, "-1e-300", ""},
    {Member::kDouble, "1e400", 1, "1.79769e+308", "Double value on or about character 0 is invalid\n"},
    {Member::kDouble, "x", 1, "0", "Double value on or about character 0 is invalid\n"},
    {Member::kDouble, "", 1, "1", "Double value on or about character 0 is invalid\n"},
    {Member::kFloat, "16777216", 0, "1.67772e+07", ""},
    {Member::kFloat, "-1e39", 1, "-3.40282e+38", "Float value on or about character 0 is invalid\n"},
    {Member::kInt8, "-128", 0, "-128", ""},
    {Member::kInt8, "65", 0, "65", ""},
    {Member::kInt8, "200", 1, "1", "Int8 value on or about character 4 is invalid\n"},
    {Member::kInt8, "x", 1, "1", "Int8 value on or about character 0 is invalid\n"},
    {Member::kInt16, "-32768", 0, "-32768", ""},
    {Member::kInt16, "32768", 1, "1", "Int16 value on or about character 6 is invalid\n"},
    {Member::kInt32, "-2147483648", 0, "-2147483648", ""},
    {Member::kInt32, "2147483648", 1, "2147483647", "Int32 value on or about character 0 is invalid\n"},
    {Member::kInt32, "12abc", 0, "12", ""},
    {Member::kInt64, "-9223372036854775808", 0, "-9223372036854775808", ""},
    {Member::kInt64, "-", 1, "0", "Int64 value on or about character 0 is invalid\n"},
    {Member::kUInt8, "255", 0, "255", ""},
    {Member::kUInt8, "300", 1, "1", "UInt8 value on or about character 4 is invalid\n"},
    {Member::kUInt8, "-1", 1, "1", "UInt8 value on or about character 3 is invalid\n"},
    {Member::kUInt16, "65535", 0, "65535", ""},
    {Member::kUInt16, "-1", 1, "1", "UInt16 value on or about character 3 is invalid\n"},
    {Member::kUInt32, "4294967295", 0, "4294967295", ""},
    {Member::kUInt32, "-1", 0, "4294967295", ""},
    {Member::kUInt32, "4294967296", 1, "4294967295", "UInt32 value on or about character 0 is invalid\n"},
    {Member::kUInt64, "18446744073709551615", 0, "18446744073709551615", ""},
    {Member::kUInt64, "99999999999999999999", 1, "18446744073709551615",
     "UInt64 value on or about character 0 is invalid\n"},
    {Member::kString, "  two  words\n", 0, "  two  words\n", ""},
    {Member::kString, "", 0, "", ""},
};

TEST_F(HandleTest, FromStr_StoresOrCountsAndTells)
{
    for (const TextCase& expected : kTextCases)
    {
        SCOPED_TRACE(std::string(Member::typeName(expected.type)) + " from '" + expected.text + "'");
        // The leading byte and the second element put the value at an odd address.
        const auto structure = Structure::make("S", {{Member::kUInt8, 1, "before"}, {expected.type, 2, "value"}});
        std::string block(2 * 512 + 1, '\0');
        Handle handle(*structure, &block[1]);
        handle.setPositionByMemberName("value");
        std::string errors;
        handle.fromStr("1", 1, errors);
        handle.fromStr("1", 0, errors);
        ASSERT_EQ(errors, "");
        errors = "before\n";
        EXPECT_EQ(handle.fromStr(expected.text, 1, errors), expected.errorCount);
        EXPECT_EQ(handle.str(1), expected.result);
        const bool hasHint = expected.type == Member::kBoolean && expected.errorCount > 0;
        EXPECT_EQ(errors, std::string("before\n") + expected.message + (hasHint ? kBooleanHint : ""));
        EXPECT_EQ(handle.str(0), expected.type == Member::kBoolean ? "true" : "1");
        structure->destroyChunk(handle.data());
    }
}

TEST_F(HandleTest, FromStr_ChecksElementAndType)
{
    const auto structure =
        Structure::make("S", {{Member::kInt32, 2, "pair"}, {static_cast<Member::eDataType>(77), 1, "odd"}});
    Handle handle(*structure);
    std::string errors;
    EXPECT_EQ(handle.fromStr("1", 2, errors), 1);
    EXPECT_EQ(handle.fromStr("1", 4294967295U, errors), 1);
    handle.setPositionByMemberIndex(1);
    EXPECT_EQ(handle.fromStr("1", 0, errors), 0);
    handle.setPositionByMemberIndex(9);
    EXPECT_EQ(handle.fromStr("1", 3, errors), 1);
    EXPECT_EQ(errors, "Trying to parse element 2 when the member pair only has dimension 2\n"
                      "Trying to parse element 4294967295 when the member pair only has dimension 2\n"
                      "Invalid type 77 in structure.\n"
                      "Trying to parse element 3 when the member does not exist\n");
    EXPECT_TRUE(handle.isDefault());
    handle.setPositionByMemberIndex(0);
    EXPECT_EQ(handle.str(2), "0"); // never reads past the values
}

TEST_F(HandleTest, Matrices_ReadSixteenEntriesAndCountAllAfterTheFirstBadOne)
{
    const auto structure =
        Structure::make("S", {{Member::kFloatMatrix4x4, 2, "f"}, {Member::kDoubleMatrix4x4, 1, "d"}});
    Handle handle(*structure);
    const std::string sixteen = "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16.5";
    std::string errors;
    EXPECT_EQ(handle.fromStr("\t" + sixteen + " 17", 1, errors), 0);
    EXPECT_EQ(handle.str(1), sixteen);
    EXPECT_EQ(handle.asFloatMatrix4x4()[16 + 15], 16.5F);
    EXPECT_EQ(handle.asFloatMatrix4x4()[15], 0);
    EXPECT_EQ(handle.fromStr("20 30 40 50 60 70 80 90 100 110 120 130 140 x 160 170", 1, errors), 3);
    EXPECT_EQ(errors, "Float matrix on or about character 0 has invalid value at row 3, column 1\n"
                      "Float matrix on or about character 0 has invalid value at row 3, column 2\n"
                      "Float matrix on or about character 0 has invalid value at row 3, column 3\n");
    EXPECT_EQ(handle.str(1), "20 30 40 50 60 70 80 90 100 110 120 130 140 0 15 16.5");
    handle.setPositionByMemberName("d");
    errors.clear();
    EXPECT_EQ(handle.fromStr("", 0, errors), 16);
    EXPECT_EQ(errors.substr(0, errors.find('\n')),
              "Double matrix on or about character 0 has invalid value at row 0, column 0");
}

TEST_F(HandleTest, Strings_ReplaceTheOneBeforeAndHideBehindANullFirst)
{
    const auto structure = Structure::make("S", {{Member::kString, 2, "texts"}});
    Handle handle(*structure);
    std::string errors;
    EXPECT_EQ(handle.fromStr("second", 1, errors), 0);
    EXPECT_EQ(handle.str(1), ""); // the first value is null
    EXPECT_EQ(handle.fromStr("first", 0, errors), 0);
    EXPECT_EQ(handle.fromStr("another first", 0, errors), 0);
    EXPECT_EQ(handle.str(0), "another first");
    EXPECT_EQ(handle.str(1), "second");
    EXPECT_EQ(handle.fromStr(std::string("cut\0off", 7), 0, errors), 1); // would be stored as "cut"
    EXPECT_EQ(handle.str(0), "another first");
}

TEST_F(HandleGoldenTest, Debug_IsOneLineWithItsFilters)
{
    const auto structure = Structure::make("S", {{Member::kInt32, 3, "i"}, {Member::kInt8, 2, "b"}});
    Handle handle(*structure);
    for (int i = 0; i < 3; ++i)
        handle.asInt32()[i] = i + 1;
    EXPECT_EQ(test::printed(&handle), "3 elements: [ 1 2 3 ]");
    handle.setPositionByMemberName("b");
    handle.asInt8()[1] = -1;
    std::ostringstream out;
    vumo::Debug::Print request(out);
    request.setIndent(1);
    request.addFilter("type", 1);
    request.addFilter("hex", 1);
    EXPECT_TRUE(Handle::Debug(&handle, request));
    std::ostringstream address;
    address.imbue(std::locale::classic());
    address << static_cast<const void*>(handle.data());
    EXPECT_EQ(out.str(), "    int8 2 elements: [ 0 -1 ](" + address.str() + ")  00  ff ");
    out.str("");
    request.addFilter("type", 0);
    const Handle dataless(*structure, nullptr);
    EXPECT_TRUE(Handle::Debug(&dataless, request));
    EXPECT_EQ(out.str(), "    3 elements: [ 0 0 0 ](0) ");
    EXPECT_EQ(test::footprintOf(&handle).totalSize(), sizeof(Handle));
    const auto truth = Structure::make("S", {{Member::kBoolean, 1, "b"}});
    char block[] = {'\x02'};
    EXPECT_EQ(Handle(*truth, block).str(0), "true"); // as any byte but 0
}
} // namespace
} // namespace vumo::Data
