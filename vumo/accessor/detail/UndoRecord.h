#pragma once

#include "vumo/accessor/detail/File.h"
#include "vumo/accessor/detail/FileChange.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vumo::Data::detail
{
/// What a change of a file replaces: all that is needed to undo it, and to tell whether a file is one that the change
/// was being made to. docs/formats/undo-record.md has the form in which it is stored.
///
/// Made from a change, it borrows the change's bytes. Empty edits count for nothing.
class UndoRecord
{
public:
    enum class eContent
    {
        kComplete,
        kIncomplete, ///< its writer did not come to the end of it, and so not to the file
        kForeign,    ///< no record, or one of another version
        kUnreadable
    };

    enum class eFit
    {
        kUnchanged, ///< the file is as it was before the change
        kChanged,   ///< the file is as it is after the change
        kMixed,     ///< each byte is one or the other, or zero after the end of the shorter of the two
        kNone,      ///< the file has other bytes: it is not the one, or was changed since
        kUnknown    ///< the file cannot be read
    };

    UndoRecord() = default;
    UndoRecord(const UndoRecord&) = delete;
    UndoRecord& operator=(const UndoRecord&) = delete;

    /// Reads from the file what the change is going to replace. False when that failed.
    bool take(const File& file, const FileChange& change);

    /// Stores the record in a new file. Allocates nothing.
    bool store(const File& recordFile) const;

    /// Reads a record that was stored. Use it no further unless it is complete.
    eContent load(const File& recordFile);

    eFit fit(const File& file) const;

    /// Gives the file its old bytes and its old length. Allocates nothing.
    bool restore(const File& file) const;

private:
    struct Range
    {
        std::uint64_t position;
        std::string_view oldBytes; // none where the file was shorter
        std::string_view newBytes; // none where the file will be shorter
        std::uint64_t length() const { return std::max(oldBytes.size(), newBytes.size()); }
        std::uint64_t end() const { return position + length(); }
    };

    /// Which of the two states of the file a part of it shows.
    struct Match
    {
        bool isOld = true;
        bool isNew = true;
        bool isEither = true;
    };

    void addRanges(const FileChange& change);
    bool readOldBytes(const File& file);
    std::string head() const;
    eContent parse();
    bool parseRanges(std::string_view table, std::string_view bytes);
    bool isConsistent() const;
    bool readSurroundings(const File& file, std::uint64_t& checksum) const;
    bool match(const Range& range, const File& file, std::uint64_t fileSize, Match& result) const;

    std::uint64_t mOldLength = 0;
    std::uint64_t mNewLength = 0;
    std::uint64_t mSurroundings = 0; // checksum of bytes around the ranges, which stay
    std::vector<Range> mRanges;      // by position
    std::string mBytes;              // that they point into
    std::string mHead;               // as it is stored
};
} // namespace vumo::Data::detail
