#include "vumo/foundation/Print.h"

#include "vumo/foundation/detail/DebugObject.h"

#include <array>
#include <cstdio>
#include <map>
#include <utility>

namespace vumo::Debug
{
struct Print::State
{
    explicit State(std::ostream& target) : out(&target) {}

    std::ostream* out;
    int level = 0;
    std::string indentString = "    ";
    eStyle style = kBraced;
    bool skipIndent = false;
    std::map<std::string, int> filters;
};

Print::Print(std::ostream& out) : mState(std::make_unique<State>(out)) {}

Print::Print(const Print& other) : mState(std::make_unique<State>(*other.mState))
{
    mState->filters.clear();
}

Print& Print::operator=(const Print& other)
{
    if (this != &other)
        mState = Print(other).mState;
    return *this;
}

Print::~Print() = default;

void Print::doIndent()
{
    if (mState->skipIndent)
    {
        mState->skipIndent = false;
        return;
    }
    for (int i = 0; i < mState->level; ++i)
        *mState->out << mState->indentString;
}

template <class T>
std::ostream& Print::insert(const T& value)
{
    doIndent();
    return *mState->out << value;
}

std::ostream& Print::operator<<(const char* value)
{
    return insert(value ? value : "");
}

std::ostream& Print::operator<<(char* value)
{
    return *this << static_cast<const char*>(value);
}

std::ostream& Print::operator<<(int value)
{
    return insert(value);
}

std::ostream& Print::operator<<(unsigned int value)
{
    return insert(value);
}

std::ostream& Print::operator<<(char value)
{
    return insert(value);
}

std::ostream& Print::operator<<(unsigned char value)
{
    return insert(value);
}

std::ostream& Print::operator<<(float value)
{
    return insert(value);
}

std::ostream& Print::operator<<(double value)
{
    return insert(value);
}

std::ostream& Print::operator<<(long long value)
{
    return insert(value);
}

std::ostream& Print::operator<<(unsigned long long value)
{
    return insert(value);
}

std::ostream& Print::operator<<(const void* value)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "0x%p", value); // platforms that write an "0x" themselves give two
    return insert(text.data());
}

void Print::outputHexChars(unsigned int count, const unsigned char* bytes)
{
    doIndent();
    std::array<char, 4> text{};
    for (unsigned int i = 0; i < count; ++i)
    {
        std::snprintf(text.data(), text.size(), "%02x ", static_cast<unsigned int>(bytes[i]));
        *mState->out << text.data();
    }
}

void Print::beginSection(const char* title)
{
    *this << title << "\n";
    if (mState->style == kBraced)
        *this << "{\n";
    ++mState->level;
}

void Print::endSection()
{
    --mState->level;
    if (mState->style == kBraced)
        *this << "}\n";
}

int Print::indent(int delta)
{
    return setIndent(mState->level + delta);
}

int Print::setIndent(int level)
{
    return std::exchange(mState->level, level);
}

std::string Print::setIndentString(const std::string& indentString)
{
    return std::exchange(mState->indentString, indentString);
}

Print::eStyle Print::setSectionStyle(eStyle style)
{
    return std::exchange(mState->style, style);
}

bool Print::skipNextIndent(bool skip)
{
    return std::exchange(mState->skipIndent, skip);
}

void Print::addFilter(const std::string& name, int value)
{
    mState->filters[name] = value;
}

bool Print::findFilter(const std::string& name, int& value) const
{
    const auto found = mState->filters.find(name);
    if (found == mState->filters.end())
        return false;
    value = found->second;
    return true;
}

void Print::removeFilter(const std::string& name)
{
    mState->filters.erase(name);
}

bool Print::Debug(const Print* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Debug::Print", object, request);
}

bool Print::Debug(const Print* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Debug
