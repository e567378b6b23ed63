#include "vumo/accessor/detail/Replacement.h"

#include <algorithm>
#include <string_view>

namespace vumo::Data::detail
{
namespace
{
/// Fewer bytes than that between two cuts are written with them: two edits would take more calls and a longer record.
constexpr std::uint64_t kShortestGap = 4096;
} // namespace

bool Replacement::cut(std::uint64_t from, std::uint64_t to)
{
    if (mCuts.empty() || from - mCuts.back().to >= kShortestGap)
        mCuts.push_back({from, from, mBytes.size()});
    Cut& last = mCuts.back();
    const std::size_t oldSize = mBytes.size();
    mBytes.resize(oldSize + (from - last.to));
    if (mBytes.size() > oldSize && !mRead(last.to, from, &mBytes[oldSize]))
        return false;
    mRemoved += to - last.to;
    last.to = to;
    return true;
}

bool Replacement::addTo(FileChange& change, std::uint64_t end, std::uint64_t fileSize, const char* seekFailed,
                        const char* writeFailed)
{
    mCuts.push_back({end, end, mBytes.size()});
    FileEdit edit = {0, {}, seekFailed, writeFailed};
    std::uint64_t shift = 0; // of what stands after the cut, modulo 2^64
    for (auto cut = mCuts.begin(); cut + 1 != mCuts.end(); ++cut)
    {
        const Cut& next = cut[1];
        edit.position = cut->from + shift;
        edit.bytes = std::string_view(mBytes).substr(cut->bytes, next.bytes - cut->bytes);
        edit.old = {};
        change.add(edit);
        shift += edit.bytes.size() - (cut->to - cut->from);
        if (shift == 0 || cut->to == next.from)
            continue;
        edit.position = cut->to + shift;
        if (!readMoved(cut->to, next.from, fileSize, edit))
            return false;
        change.add(edit);
    }
    return true;
}

/// Reads the bytes between two positions that move to that of the edit. Where these meet those that stand there, which
/// an undo record has to have, it reads both at once.
bool Replacement::readMoved(std::uint64_t from, std::uint64_t to, std::uint64_t fileSize, FileEdit& edit)
{
    const std::size_t count = to - from;
    const std::uint64_t newEnd = edit.position + count;
    const bool areMeeting = edit.position < to && from < newEnd;
    const std::uint64_t begin = areMeeting ? std::min(from, edit.position) : from;
    const std::uint64_t end = areMeeting ? std::max(to, std::min(newEnd, fileSize)) : to;
    mMoved.push_back(std::unique_ptr<char[]>(new char[end - begin])); // not filled
    const std::string_view bytes(mMoved.back().get(), end - begin);
    edit.bytes = bytes.substr(from - begin, count);
    edit.old = areMeeting ? bytes.substr(edit.position - begin, count) : std::string_view();
    return mRead(begin, end, mMoved.back().get());
}
} // namespace vumo::Data::detail
