#include "tools/codec/Json.h"

#include "tools/codec/Base64.h"
#include "tools/codec/CodecError.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>

namespace vumo::codec
{
namespace
{
/// Far more than any text of ours has: it bounds how deep the values are freed.
constexpr std::size_t kMostLevels = 64;

constexpr const char* kBase64Key = "base64";

/// Takes the values from the parser one after the other.
class Builder : public nlohmann::json_sax<nlohmann::json>
{
public:
    JsonValue result;

    bool null() override { return add(JsonValue::kNull, ""); }
    bool boolean(bool value) override { return add(JsonValue::kBoolean, value ? "true" : "false"); }
    bool number_integer(std::int64_t value) override { return add(JsonValue::kNumber, std::to_string(value)); }
    bool number_unsigned(std::uint64_t value) override { return add(JsonValue::kNumber, std::to_string(value)); }
    bool number_float(double, const std::string& text) override { return add(JsonValue::kNumber, text); }
    bool string(std::string& text) override { return add(JsonValue::kText, std::move(text)); }
    bool binary(nlohmann::json::binary_t&) override { return false; } // in JSON there is none
    bool start_object(std::size_t) override { return open(JsonValue::kObject); }
    bool start_array(std::size_t) override { return open(JsonValue::kArray); }
    bool end_array() override { return close(); }

    bool key(std::string& key) override
    {
        mOpen.back()->keys.push_back(std::move(key));
        return true;
    }

    bool end_object() override
    {
        std::vector<std::string> sorted = mOpen.back()->keys;
        std::sort(sorted.begin(), sorted.end());
        const auto twice = std::adjacent_find(sorted.begin(), sorted.end());
        if (twice != sorted.end())
            throw CodecError("the key " + jsonText(*twice) + " comes twice in an object");
        return close();
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception& error) override
    {
        const std::string message = error.what(); // "[json.exception.parse_error.101] parse error at line 1, ..."
        throw CodecError(message.substr(message.find(' ') + 1));
    }

private:
    bool add(JsonValue::eKind kind, std::string text)
    {
        JsonValue& value = mOpen.empty() ? result : mOpen.back()->items.emplace_back();
        value.kind = kind;
        value.text = std::move(text);
        return true;
    }

    bool open(JsonValue::eKind kind)
    {
        if (mOpen.size() == kMostLevels)
            throw CodecError("values are nested more than " + std::to_string(kMostLevels) + " deep");
        add(kind, "");
        mOpen.push_back(mOpen.empty() ? &result : &mOpen.back()->items.back());
        return true;
    }

    bool close()
    {
        mOpen.pop_back();
        return true;
    }

    std::vector<JsonValue*> mOpen; // the arrays and objects around the next value; only the last one grows
};
} // namespace

const JsonValue* JsonValue::find(const std::string& key, std::size_t guess) const
{
    if (guess < keys.size() && keys[guess] == key)
        return &items[guess];
    const auto found = std::find(keys.begin(), keys.end(), key);
    return found == keys.end() ? nullptr : &items[static_cast<std::size_t>(found - keys.begin())];
}

JsonValue parseJson(const std::string& text)
{
    Builder builder;
    nlohmann::json::sax_parse(text, &builder);
    return std::move(builder.result);
}

std::string jsonText(const std::string& text)
{
    const auto isPlain = [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; };
    if (std::all_of(text.begin(), text.end(), isPlain)) // as nearly all texts are; the rest takes ten times as long
        return '"' + text + '"';
    try
    {
        return nlohmann::json(text).dump();
    }
    catch (const nlohmann::json::type_error&) // it is not UTF-8
    {
        return bytesJson(text);
    }
}

std::string bytesJson(const std::string& bytes)
{
    return std::string("{\"") + kBase64Key + "\": \"" + toBase64(bytes) + "\"}";
}

std::string textFrom(const JsonValue& value)
{
    if (value.kind == JsonValue::kText)
        return value.text;
    const bool isBytes = value.kind == JsonValue::kObject && value.keys == std::vector<std::string>{kBase64Key} &&
                         value.items[0].kind == JsonValue::kText;
    if (!isBytes)
        throw CodecError("a text is expected, or {\"base64\": \"...\"}");
    return fromBase64(value.items[0].text);
}
} // namespace vumo::codec
