#pragma once

#include <string>

namespace vumo::Data::detail
{
/// Collects the messages of one call to a serializer, a line each, and counts its errors.
class Messages
{
public:
    /// Counts an error and adds its line.
    void add(const std::string& message);

    /// Adds a line that is no error of its own.
    void note(const std::string& message);

    /// Where a nested call appends its messages; countErrors() tells how many of them count.
    std::string& text() { return mText; }
    void countErrors(int count) { mCount += count; }

    int count() const { return mCount; }

    /// Appends all lines to `errors`, without a summary; returns the count.
    int appendTo(std::string& errors) const;

    /// When there were errors, appends all lines to `errors`, closed by the summary: the count and what comes
    /// of it, "Stream not created", say. Returns the count.
    int report(const std::string& consequence, std::string& errors);

private:
    std::string mText;
    int mCount = 0;
};
} // namespace vumo::Data::detail
