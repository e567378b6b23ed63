#pragma once

#include <stdexcept>
#include <string>

namespace vumo::codec
{
/// Thrown for a text that cannot be read, and for data that cannot be written. The message says what, and where.
class CodecError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Does something at a place, which `place()` names in the message if it fails.
template <class Place, class Action>
decltype(auto) at(const Place& place, const Action& action)
{
    try
    {
        return action();
    }
    catch (const CodecError& error)
    {
        throw CodecError(place() + ": " + error.what());
    }
}
} // namespace vumo::codec
