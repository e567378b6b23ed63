#pragma once

#include "tests/support/Random.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <type_traits>

namespace vumo::test
{
/// Random numbers and number texts with a preference for those that conversions get wrong.
class RandomNumbers : public Random
{
public:
    std::uint64_t bits()
    {
        return std::uint64_t(below(0xFFFFFFFF)) << 32 ^ below(0xFFFFFFFF) ^ std::uint64_t(below(4)) << 31;
    }

    /// Any value of that type.
    template <class T>
    T value()
    {
        if constexpr (std::is_floating_point_v<T>)
            return below(8) == 0 ? fromBits<T>() : static_cast<T>(common());
        else
            return static_cast<T>(bits() >> below(64));
    }

    /// A word that may be a number, with little or no regard to the type.
    std::string token()
    {
        std::string text = plainToken();
        for (unsigned int n = below(4) == 0 ? 1 + below(2) : 0; n > 0; --n)
            mutate(text);
        return text;
    }

    /// Several such words.
    std::string oddLine()
    {
        std::string line;
        for (unsigned int n = 2 + below(3); n > 0; --n)
            line += token() + blank();
        return trimmed(line);
    }

    /// Three numbers that can be read.
    template <class T>
    std::string plainLine()
    {
        std::string line;
        for (int i = 0; i < 3; ++i)
            line += (std::is_floating_point_v<T> ? readableFloat() : std::to_string(value<T>())) + blank();
        return trimmed(line);
    }

    /// Gives the stream a precision and a float format of any kind.
    void chooseFormat(std::ostream& out)
    {
        static constexpr std::ios::fmtflags kFormats[] = {
            {}, {}, {}, std::ios::fixed, std::ios::scientific, std::ios::fixed | std::ios::scientific};
        std::ios::fmtflags flags = kFormats[below(6)];
        if (below(8) == 0)
            flags |= std::ios::showpoint;
        if (below(8) == 0)
            flags |= std::ios::uppercase;
        out.flags(flags);
        out.precision(below(16) == 0 ? static_cast<int>(below(600)) - 3 : static_cast<int>(below(20)));
    }

    /// A number of any bits.
    template <class T>
    T fromBits()
    {
        using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
        const auto pattern = static_cast<Bits>(bits());
        T result;
        std::memcpy(&result, &pattern, sizeof(result));
        return result;
    }

private:
    int between(int first, int last)
    {
        return first + static_cast<int>(below(static_cast<unsigned int>(last - first + 1)));
    }

    double signedly(double magnitude) { return below(2) == 0 ? -magnitude : magnitude; }

    /// A double of the kinds that people store, and their neighbours.
    double common()
    {
        double result = 0;
        switch (below(6))
        {
        case 0: // few decimal digits
            result = below(1000000) * std::pow(10.0, between(-12, 8));
            break;
        case 1: // halfway between decimals: a few binary places
            result = std::ldexp(below(1U << between(1, 30)), -between(0, 24));
            break;
        case 2: // halfway between decimals beyond the point
            result = (below(10000000) * 10.0 + 5) * std::pow(10.0, between(0, 14));
            break;
        case 3:
            result = std::pow(10.0, between(-30, 25));
            break;
        case 4: // where rounding adds a digit
            result = (std::pow(10.0, between(1, 18)) - 0.5) * std::pow(10.0, between(-20, 3));
            break;
        default:
            result = std::ldexp(static_cast<double>(bits() >> 11), between(-120, 20));
            break;
        }
        for (unsigned int n = below(3); n > 0; --n)
            result = std::nextafter(result, below(2) == 0 ? 0.0 : HUGE_VAL);
        return signedly(result);
    }

    std::string format(const char* pattern, double number)
    {
        char text[512];
        std::snprintf(text, sizeof(text), pattern, number);
        return text;
    }

    std::string readableFloat()
    {
        const float number = static_cast<float>(common());
        return format(below(2) == 0 ? "%g" : "%.9g", std::isfinite(number) ? static_cast<double>(number) : 0.0);
    }

    std::string plainToken()
    {
        static constexpr const char* kPatterns[] = {"%g",    "%.9g", "%.17g", "%f", "%e",
                                                    "%.25g", "%.3f", "%.0f",  "%a", "%E"};
        switch (below(8))
        {
        case 0:
            return std::to_string(static_cast<std::int64_t>(bits()) >> below(64));
        case 1:
            return std::to_string(bits() >> below(64));
        case 2:
            return nearALimit();
        case 3:
            return halfwayBetweenFloats();
        case 4:
            return digits(1 + below(below(64) == 0 ? 400 : 25)) + "." + digits(1 + below(20)) + "e" +
                   std::to_string(between(-400, 400));
        case 5:
            return format(kPatterns[below(10)], value<double>());
        default:
            return format(kPatterns[below(6)], common());
        }
    }

    std::string digits(unsigned int count)
    {
        std::string text;
        for (; count > 0; --count)
            text += static_cast<char>('0' + below(10));
        return text;
    }

    /// An integer at the end of some type's range.
    std::string nearALimit()
    {
        const int width = 8 << below(4);
        const std::uint64_t end = width == 64 ? 0 : std::uint64_t(1) << width;
        const std::uint64_t half = std::uint64_t(1) << (width - 1);
        const std::uint64_t limit = (below(2) == 0 ? end : half) + below(3) - 1;
        return (below(2) == 0 ? "-" : "") + std::to_string(limit);
    }

    /// The exact decimal text of what lies between two floats or two doubles, or nearly that.
    std::string halfwayBetweenFloats()
    {
        char text[1200];
        if (below(2) == 0)
        {
            const float low = fromBits<float>();
            const double high = std::nextafter(low, HUGE_VALF);
            std::snprintf(text, sizeof(text), "%.*g", between(10, 120), (static_cast<double>(low) + high) / 2);
        }
        else
        {
            const double low = common();
            const long double high = std::nextafter(low, HUGE_VAL);
            std::snprintf(text, sizeof(text), "%.*Lg", between(16, 700), (static_cast<long double>(low) + high) / 2);
        }
        std::string result = text;
        if (below(2) == 0 && result.find_first_of("en") == std::string::npos && result.find('.') != std::string::npos)
            result += below(2) == 0 ? "1" : "0000000000000000000001";
        return result;
    }

    void mutate(std::string& text)
    {
        static constexpr char kAlphabet[] = "0123456789+-.eExXinfatrue,:'_ \t\v\0\xE9";
        const std::size_t place = below(static_cast<unsigned int>(text.size()) + 1);
        const char c = kAlphabet[below(sizeof(kAlphabet) - 1)];
        switch (below(3))
        {
        case 0:
            text.insert(place, 1, c);
            break;
        case 1:
            text.replace(place, 1, 1, c);
            break;
        default:
            text.erase(place, 1);
            break;
        }
    }

    std::string blank()
    {
        static constexpr const char* kBlanks[] = {" ", " ", " ", "  ", "\t", "\r", "\v\f "};
        return kBlanks[below(7)];
    }

    /// A line as a reader sees it; one with nothing on it would be passed over.
    static std::string trimmed(std::string line)
    {
        static constexpr char kBlanks[] = " \t\v\f\r";
        line.erase(line.find_last_not_of(kBlanks) + 1);
        line.erase(0, line.find_first_not_of(kBlanks));
        return line.empty() || line.size() > 1000 || line == "endStream" ? "0 0 0" : line;
    }
};
} // namespace vumo::test
