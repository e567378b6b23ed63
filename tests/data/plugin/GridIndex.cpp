// A plug-in with an index type of its own, as a host loads and unloads it.

#include "vumo/data/IndexTypeRegistrar.h"

namespace vumo::Data
{
namespace
{
/// A place in a grid: a letter and a digit.
class GridIndex : public CRTP_IndexType<GridIndex>
{
public:
    explicit GridIndex(const std::string& text) : mText(text)
    {
        if (mText.size() != 2)
            throw Index::eIllegalIndexText;
    }

    std::string asString() const override { return mText; }
    bool supportsDenseMode() const override { return false; }
    unsigned int denseSpaceBetween(const IndexType&) const override { return 0; }
    bool operator==(const IndexType& other) const override { return mText == textOf(other); }
    bool operator!=(const IndexType& other) const override { return mText != textOf(other); }
    bool operator<(const IndexType& other) const override { return mText < textOf(other); }
    bool operator<=(const IndexType& other) const override { return mText <= textOf(other); }
    bool operator>(const IndexType& other) const override { return mText > textOf(other); }
    bool operator>=(const IndexType& other) const override { return mText >= textOf(other); }

    static const std::string myTypeName;

private:
    static const std::string& textOf(const IndexType& other) { return static_cast<const GridIndex&>(other).mText; }

    std::string mText;
};

const std::string GridIndex::myTypeName = "grid";
const IndexTypeRegistrar<GridIndex> theRegistrar;
} // namespace
} // namespace vumo::Data
