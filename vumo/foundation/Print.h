#pragma once

#include "vumo/foundation/Export.h"

#include <memory>
#include <ostream>
#include <string>

namespace vumo::Debug
{
class Footprint;

/// Writes an indented description of objects to a stream.
///
/// Hand one to a class's `Debug(const T*, Print&)`: with an object it describes that object, with null
/// the class's static data. Each insertion starts with the indentation and returns the stream itself,
/// so a line is one insertion into the Print, the rest of it chained, and an explicit newline at the end.
///
/// Borrows the stream, which must outlive it.
class VUMO_EXPORT Print
{
public:
    /// How sections look: with their contents in braces, or by title and indentation alone.
    enum eStyle : int
    {
        kBraced,
        kPlain
    };

    explicit Print(std::ostream& out);

    /// Copies everything but the filters: the copy has none.
    Print(const Print& other);
    Print& operator=(const Print& other);
    ~Print();

    /// Writes the indentation, unless the last skipNextIndent() asked to leave it out this once.
    void doIndent();

    /// Each writes the indentation and the value; a null text is written as an empty one.
    std::ostream& operator<<(const char* value);
    std::ostream& operator<<(char* value);
    std::ostream& operator<<(int value);
    std::ostream& operator<<(unsigned int value);
    std::ostream& operator<<(char value);
    std::ostream& operator<<(unsigned char value);
    std::ostream& operator<<(float value);
    std::ostream& operator<<(double value);
    std::ostream& operator<<(long long value);
    std::ostream& operator<<(unsigned long long value);

    /// Writes an address as "0x" and the platform's own form of a pointer.
    std::ostream& operator<<(const void* value);

    /// Writes the indentation and each byte as two lower-case hex digits and a blank.
    void outputHexChars(unsigned int count, const unsigned char* bytes);

    /// Writes the title and indents what follows by one level, until endSection().
    void beginSection(const char* title);
    void endSection();

    /// Changes the level by `delta`; returns the level before.
    int indent(int delta);

    /// These four set and return the value before.
    int setIndent(int level);
    std::string setIndentString(const std::string& indentString);
    eStyle setSectionStyle(eStyle style);
    bool skipNextIndent(bool skip);

    /// Filters ask a class for optional detail; which names it knows is for the class to say.
    void addFilter(const std::string& name, int value);

    /// True, with the value, when there is a filter of that name; else leaves `value` alone.
    bool findFilter(const std::string& name, int& value) const;
    void removeFilter(const std::string& name);

    static bool Debug(const Print* object, Print& request);
    static bool Debug(const Print* object, Footprint& request);

private:
    struct State;

    template <class T>
    std::ostream& insert(const T& value);

    std::unique_ptr<State> mState;
};
} // namespace vumo::Debug
