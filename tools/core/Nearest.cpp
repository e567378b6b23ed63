#include "core/Nearest.h"

#include "core/Text.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace
{
/// How many bytes have to be added, removed, changed or swapped with their neighbour to get from one to the other;
/// letters of the other case are the same.
std::size_t distance(const std::string& a, const std::string& b)
{
    const auto lower = [](char byte) { return std::tolower(static_cast<unsigned char>(byte)); };
    std::vector<std::size_t> beforeLast;
    std::vector<std::size_t> last(b.size() + 1);
    for (std::size_t j = 0; j < last.size(); ++j)
        last[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        std::vector<std::size_t> row(b.size() + 1, i);
        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            const bool isSame = lower(a[i - 1]) == lower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1]))
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast = std::exchange(last, std::move(row));
    }
    return last.back();
}
} // namespace

std::string didYouMean(const std::string& name, const std::vector<std::string>& candidates)
{
    constexpr std::size_t kMost = 3;
    const std::size_t farthest = name.size() / 3 + 1; // a third of the letters may be wrong
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& candidate : candidates)
    {
        const std::size_t lengths = std::max(candidate.size(), name.size()) - std::min(candidate.size(), name.size());
        const std::size_t steps = lengths <= farthest ? distance(name, candidate) : lengths;
        if (!candidate.empty() && steps <= farthest && steps < name.size())
            near.emplace_back(steps, candidate);
    }
    std::sort(near.begin(), near.end());
    near.resize(std::min(near.size(), kMost));
    std::string result;
    for (const auto& [steps, candidate] : near)
        result += (result.empty() ? "; did you mean " : " or ") + inQuotes(candidate);
    return result.empty() ? "" : result + "?";
}
