#include "vumo/data/MemberView.h"

#include "tests/support/DataFixtures.h"
#include "vumo/data/StreamImplDense.h"

#include <vector>

namespace vumo::Data
{
namespace
{
/// Of elements of 17 bytes, so that numbers and labels lie at any address.
class MemberViewTest : public test::RecordTest
{
protected:
    Stream denseRecords(unsigned int count) const
    {
        Stream stream(*mRecord, "records");
        stream.useDenseStorage(true);
        for (unsigned int i = 0; i < count; ++i)
            stream.setElement(i, test::record(*mRecord, i % 256, "l" + std::to_string(i)));
        return stream;
    }
};

TEST_F(MemberViewTest, Views_ReadWhatHandlesRead)
{
    const Stream stream = denseRecords(300);
    const auto numbers = stream.memberView<const std::uint8_t>("number");
    const auto labels = stream.memberView<const char*>("label");
    ASSERT_EQ(numbers.size(), 300U);
    ASSERT_EQ(labels.size(), 300U);
    EXPECT_EQ(labels.stride(), 17U);
    unsigned int i = 0;
    for (const auto label : labels)
    {
        ASSERT_EQ(label.size(), 1U);
        EXPECT_EQ(std::to_string(numbers.get(i)) + " " + label[0], test::recordText(stream, i));
        ++i;
    }
    EXPECT_EQ(i, 300U);
}

TEST_F(MemberViewTest, Views_WriteWhatHandlesRead)
{
    const Stream stream = denseRecords(3);
    const MemberView<char*> labels = stream.memberView<char*>("label");
    labels.set(0, "first");
    labels.set(1, labels.get(1) + 1); // a part of the string that is replaced
    labels.set(2, nullptr);
    for (const auto number : stream.memberView<std::uint8_t>("number"))
        number.set(0, static_cast<std::uint8_t>(number[0] + 200));
    EXPECT_EQ(test::recordText(stream, 0), "200 first");
    EXPECT_EQ(test::recordText(stream, 1), "201 1");
    EXPECT_EQ(test::recordText(stream, 2), "202 ");
}

TEST_F(MemberViewTest, SeveralValuesAndMatrices_FollowEachOther)
{
    const auto structure = Structure::make(
        "Shapes", {{Member::kInt8, 1, "odd"}, {Member::kFloatMatrix4x4, 2, "places"}, {Member::kBoolean, 3, "flags"}});
    Stream stream(*structure, "s");
    stream.useDenseStorage(true);
    stream.setElementRange(0, 4);
    const auto places = stream.memberView<float>("places");
    EXPECT_EQ(places.valuesPerElement(), 32U);
    places.set(3, 17, 1.5F);
    float values[32] = {};
    places[3].get(values);
    EXPECT_EQ(values[17], 1.5F);
    values[31] = -2;
    places[4].set(values);
    Handle element = stream.element(4);
    element.setPositionByMemberIndex(1);
    EXPECT_EQ(element.str(1), "0 1.5 0 0 0 0 0 0 0 0 0 0 0 0 0 -2");

    const auto flags = stream.memberView<bool>("flags");
    stream.element(2).data()[Member::offset(structure->member(2), 1)] = 2; // not a value that a bool can have
    EXPECT_TRUE(flags.get(2, 1));
    EXPECT_FALSE(flags.get(2, 2));
}

TEST_F(MemberViewTest, WhatDoesNotFit_GivesAnEmptyView)
{
    const Stream dense = denseRecords(2);
    Stream mapped(*mRecord, "mapped");
    mapped.setElement(0, Handle(*mRecord));
    Stream cleared = denseRecords(2);
    cleared.clear();
    const auto isEmpty = [](const Stream& stream, const char* name) {
        const auto view = stream.memberView<std::uint8_t>(name);
        return view.empty() && !view.data() && !(view.begin() != view.end());
    };
    EXPECT_FALSE(isEmpty(dense, "flag"));
    EXPECT_TRUE(isEmpty(dense, "label"));
    EXPECT_TRUE(isEmpty(dense, "absent"));
    EXPECT_TRUE(isEmpty(dense, nullptr));
    EXPECT_TRUE(isEmpty(mapped, "flag"));
    EXPECT_TRUE(isEmpty(cleared, "flag"));
    EXPECT_TRUE(isEmpty(denseRecords(0), "flag"));
    Stream shrunk = denseRecords(2);
    shrunk.setElementRange(0, 0); // its block is still there
    EXPECT_TRUE(isEmpty(shrunk, "flag"));
    EXPECT_EQ(shrunk.elementView().data(), nullptr);
    EXPECT_TRUE(dense.memberView<std::int8_t>("flag").empty());
    EXPECT_TRUE(mapped.elementView().empty());
    EXPECT_EQ(dense.elementView()[1], dense.element(1).data());
    EXPECT_EQ(dense.elementView().size(), 2U);
}

/// A storage whose elements are not where its base class keeps them.
class ElsewhereStorage : public StreamImplDense
{
public:
    using StreamImplDense::StreamImplDense;
    char* elementAddr(Index) const override { return mOther.data(); }

    Handle mOther{structure()};
};

TEST_F(MemberViewTest, AStorageOfItsOwnAddresses_HasNoViewAndIsWalkedByThem)
{
    auto* const storage = new ElsewhereStorage(*mRecord, "s");
    Stream stream(storage);
    stream.setElement(0, test::record(*mRecord, 1, "inside"));
    EXPECT_TRUE(stream.elementView().empty());
    stream.setElement(1, test::record(*mRecord, 1, "inside, too"));
    StreamIterator position = stream.begin();
    EXPECT_EQ(position->data(), storage->mOther.data());
    ++position;
    EXPECT_EQ(position->data(), storage->mOther.data());
    EXPECT_EQ(position.index().index(), 1U);
}

class BulkAccessTest : public MemberViewTest
{
protected:
    static constexpr unsigned int kIndices[] = {7, 2, 9, 2, 4294967294U};
};

TEST_F(BulkAccessTest, SetElements_EqualsOneAfterTheOther)
{
    const Stream source = denseRecords(5);
    Stream bulk(*mRecord, "s");
    Stream single(*mRecord, "s");
    EXPECT_EQ(bulk.setElements(kIndices, source.elementView()), 5U);
    for (unsigned int i = 0; i < 5; ++i)
        single.setElement(kIndices[i], source.element(i));
    EXPECT_EQ(test::printedWithoutAddresses(&bulk), test::printedWithoutAddresses(&single));
    bulk.setElement(IndexString("complex"), source.element(0));
    EXPECT_EQ(bulk.numericIndices(), (std::vector<unsigned int>{2, 7, 9, 4294967294U}));

    Stream dense = denseRecords(0);
    EXPECT_EQ(dense.setElements(kIndices, source.elementView()), 4U); // no place for the last
    EXPECT_EQ(dense.elementCount(), 10U);
    EXPECT_EQ(Stream().setElements(kIndices, source.elementView()), 0U);
    EXPECT_EQ(bulk.setElements(nullptr, ElementView()), 0U);
}

TEST_F(BulkAccessTest, GetElements_ReplacesWhatTheBlocksHeld)
{
    Stream stream(*mRecord, "s");
    stream.setElement(7, test::record(*mRecord, 7, "seven"));
    stream.setElement(9, test::record(*mRecord, 9, "nine"));
    const Stream target = denseRecords(5);
    EXPECT_EQ(stream.getElements(kIndices, target.elementView()), 2U);
    EXPECT_EQ(test::recordText(target, 0), "7 seven");
    EXPECT_EQ(test::recordText(target, 1), "0 ");
    EXPECT_EQ(test::recordText(target, 2), "9 nine");
    EXPECT_EQ(Stream().getElements(kIndices, target.elementView()), 0U);
    EXPECT_EQ(test::recordText(target, 0), "7 seven");

    const unsigned int own[] = {0, 0, 2, 2, 0};
    EXPECT_EQ(target.getElements(own, target.elementView()), 5U); // some of them onto themselves
    EXPECT_EQ(test::recordText(target, 0) + ", " + test::recordText(target, 1), "7 seven, 7 seven");
    EXPECT_EQ(test::recordText(target, 2) + ", " + test::recordText(target, 3), "9 nine, 9 nine");
}

TEST_F(BulkAccessTest, MemberValues_AreWrittenAndReadInOneCall)
{
    for (const bool isDense : {false, true})
    {
        SCOPED_TRACE(isDense ? "dense" : "mapped");
        Stream stream(*mRecord, "s");
        stream.useDenseStorage(isDense);
        stream.setElement(2, test::record(*mRecord, 2, "two"));
        const unsigned int indices[] = {6, 2, 3};
        const std::uint8_t numbers[] = {60, 20, 30};
        const char* const labels[] = {"six", nullptr, "three"};
        EXPECT_EQ(stream.setMemberValues("number", indices, 3, numbers), 3U);
        EXPECT_EQ(test::recordText(stream, 2), "20 two");
        EXPECT_EQ(stream.setMemberValues("label", indices, 3, labels), 3U);
        EXPECT_EQ(test::recordText(stream, 6), "60 six");
        EXPECT_EQ(stream.setMemberValues("label", indices, 3, numbers), 0U);

        const unsigned int asked[] = {3, 100, 2};
        std::uint8_t read[3] = {1, 1, 1};
        const char* lent[3] = {};
        EXPECT_EQ(stream.getMemberValues("number", asked, 3, read), 2U);
        EXPECT_EQ(std::vector<int>(read, read + 3), (std::vector<int>{30, 0, 20}));
        EXPECT_EQ(stream.getMemberValues("label", asked, 3, lent), 2U);
        EXPECT_STREQ(lent[0], "three");
        EXPECT_EQ(lent[2], nullptr);
        EXPECT_EQ(stream.getMemberValues("absent", asked, 3, read), 0U);

        const unsigned int places[] = {6, 3, 3, 6, 7};
        const char* const moved[] = {lent[0], "free", nullptr, lent[0] + 1, lent[0]};
        EXPECT_EQ(stream.setMemberValues("label", places, 5, moved), 5U); // strings of the stream itself
        EXPECT_EQ(test::recordText(stream, 6), "60 hree");
        EXPECT_EQ(test::recordText(stream, 3), "30 ");
        EXPECT_EQ(test::recordText(stream, 7), "0 three");
    }
}
} // namespace
} // namespace vumo::Data
