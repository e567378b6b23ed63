#pragma once

#include <locale>
#include <string>

namespace vumo::test
{
/// Makes a decimal comma and grouped thousands the global rule for as long as it lives.
class CommaLocale
{
public:
    CommaLocale() : mBefore(std::locale::global(std::locale(std::locale::classic(), new Punctuation))) {}
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() { std::locale::global(mBefore); }

private:
    class Punctuation : public std::numpunct<char>
    {
    protected:
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
        std::string do_truename() const override { return "wahr"; }
    };

    std::locale mBefore;
};
} // namespace vumo::test
