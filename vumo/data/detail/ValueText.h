#pragma once

#include "vumo/data/Member.h"
#include "vumo/foundation/detail/NumberFormat.h"
#include "vumo/foundation/detail/ValueInput.h"

#include <cstddef>
#include <string>

namespace vumo::Data::detail
{
/// The text form of numbers and booleans, shared by handles and text formats. A value of a matrix type is
/// 16 entries, of any other type one.

/// Appends the entries of the `count` values at `values`, separated by blanks; an int8 or uint8 is a number, too.
/// Returns whether readers take back what was written: no infinity, no NaN, no hexadecimal float, nothing rounded
/// beyond the range of its type. Not for strings.
bool appendValues(TextBuilder& text, const NumberFormat& format, Member::eDataType type, const char* values,
                  unsigned int count);

/// Reads one entry of a value of `type` to `entry`; false when its text is not acceptable. A number that
/// is wider than 16 bits is extracted in place, so a refused one leaves what the extraction left.
/// `word` receives what stood in place of a boolean. Not for strings.
bool readEntry(ValueInput& in, Member::eDataType type, char* entry, std::string& word);

/// Reads the entries of `count` values that are plain, up to the first that is not: then it is false, and `next` is the
/// number of that one, of which nothing was taken. Not for strings.
bool readPlainValues(ValueInput& in, Member::eDataType type, unsigned int count, char* target, std::size_t& next);

/// How far the entries of values have been read, and about the next one, when it is not acceptable, why.
struct ReadEntries
{
    std::size_t count = 0;
    std::string word;       // what stands in place of a boolean
    bool isMissing = false; // the input has no text left
};

/// Reads the entries of `count` values to `target`, or only over them when that is null, from the first that was not
/// read before. Each must be followed by whitespace or the end of the input. Stops at one that is not acceptable,
/// which is not stored, and returns whether there was none. Not for strings.
bool readValues(ValueInput& in, Member::eDataType type, unsigned int count, char* target, ReadEntries& read);

/// The address of entry `i` of the value at `value`.
char* entryAddress(Member::eDataType type, char* value, unsigned int i);

/// Says that entry `i` of a value could not be read; one line without its newline.
std::string entryMessage(Member::eDataType type, unsigned int i, long long character, const std::string& word);
} // namespace vumo::Data::detail
