// Handles take the same texts for numbers, and leave the same values behind, as plain extraction of that type.
// The first byte of an input chooses the data type.
#include "fuzz/Fuzz.h"
#include "vumo/data/Handle.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"

#include <cmath>
#include <cstring>
#include <locale>
#include <sstream>

using namespace vumo::Data;
using vumo::fuzz::require;

namespace
{
template <class T>
void compareWithExtraction(Member::eDataType type, const std::string& text)
{
    const vumo::Ref<Structure> structure(Structure::create());
    structure->addMember(type, 1, "Value");
    Handle handle(*structure);
    std::string errors;
    const bool isAccepted = handle.fromStr(text, 0, errors) == 0;
    require(isAccepted == errors.empty(), "an error is not counted");

    std::istringstream in(text);
    in.imbue(std::locale::classic());
    T expected = 0;
    in >> expected;
    const bool isFinite = std::isfinite(static_cast<double>(expected));
    require(isAccepted == (!in.fail() && isFinite), "'" + text + "' is judged otherwise");
    require(std::memcmp(handle.asType(type), &expected, sizeof(T)) == 0, "'" + text + "' has another value");

    const std::string written = handle.str(0);
    std::ostringstream out;
    out << expected;
    require(written == out.str(), "a value is written as '" + written + "'");
}

/// What has no plain extraction to compare with: what is written is taken back as it was written.
void readAndWrite(Member::eDataType type, const std::string& text)
{
    const vumo::Ref<Structure> structure(Structure::create());
    structure->addMember(type, 1, "Value");
    Handle handle(*structure);
    std::string errors;
    if (handle.fromStr(text, 0, errors) != 0)
        return;
    const std::string written = handle.str(0);
    require(handle.fromStr(written, 0, errors) == 0, "a written value is refused: " + written);
    require(handle.str(0) == written, "a value changes when it is written and read");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string text = vumo::fuzz::textOf(data + 1, size - 1);
    const auto type = static_cast<Member::eDataType>(data[0] % Member::kInvalidType);
    switch (type)
    {
    case Member::kDouble:
        compareWithExtraction<double>(type, text);
        break;
    case Member::kFloat:
        compareWithExtraction<float>(type, text);
        break;
    case Member::kInt32:
        compareWithExtraction<std::int32_t>(type, text);
        break;
    case Member::kInt64:
        compareWithExtraction<std::int64_t>(type, text);
        break;
    case Member::kUInt32:
        compareWithExtraction<std::uint32_t>(type, text);
        break;
    case Member::kUInt64:
        compareWithExtraction<std::uint64_t>(type, text);
        break;
    default:
        readAndWrite(type, text);
    }
    return 0;
}
