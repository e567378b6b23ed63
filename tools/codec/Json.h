#pragma once

#include <string>
#include <vector>

namespace vumo::codec
{
/// A JSON text in memory. Numbers stay texts, so that none is rounded before its type is known.
struct JsonValue
{
    enum eKind
    {
        kNull,
        kBoolean,
        kNumber,
        kText,
        kArray,
        kObject
    };

    eKind kind = kNull;
    std::string text;              ///< of a number, of a text, or "true" and "false"
    std::vector<std::string> keys; ///< of an object, each of them once, in the order of the text
    std::vector<JsonValue> items;  ///< of an array, or the values of the keys

    /// The value of the key or null. Looks at `guess` first, where it is expected among the keys.
    const JsonValue* find(const std::string& key, std::size_t guess = 0) const;
};

/// Throws a `CodecError`, also for a key that comes twice in an object and for values nested too deep.
JsonValue parseJson(const std::string& text);

/// The text as JSON: in quotes, or as {"base64": "..."} when it is not UTF-8.
std::string jsonText(const std::string& text);

/// {"base64": "..."}
std::string bytesJson(const std::string& bytes);

/// What either of them wrote. Throws a `CodecError` for any other value.
std::string textFrom(const JsonValue& value);
} // namespace vumo::codec
