#pragma once

#include <set>
#include <string>

namespace vumo::Data::detail
{
/// The names that a caller wants from a file, each of them once.
///
/// A null set wants every name, every time. accept() uses up the name it says yes to, so isExhausted() tells a
/// reader that nothing further in the file can matter. Copies the wanted names.
class NameFilter
{
public:
    explicit NameFilter(const std::set<std::string>* wanted) : mWantsAll(wanted == nullptr)
    {
        if (wanted)
            mWanted = *wanted;
    }

    /// Says whether `name` is wanted, and from then on no longer wants it.
    bool accept(const std::string& name) { return mWantsAll || mWanted.erase(name) > 0; }

    /// Says whether `name` is wanted.
    bool wants(const std::string& name) const { return mWantsAll || mWanted.count(name) > 0; }

    bool isExhausted() const { return !mWantsAll && mWanted.empty(); }

private:
    std::set<std::string> mWanted;
    bool mWantsAll;
};
} // namespace vumo::Data::detail
