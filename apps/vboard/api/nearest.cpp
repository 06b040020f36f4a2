/* nearest.cpp - see nearest.h. */
#include "api/nearest.h"

#include <algorithm>
#include <cctype>

namespace vboard_app
{
namespace
{

constexpr size_t kLongestName = 64; // longer ones are no name mistyped

char lower(char letter)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
}

/* Letters to insert, remove, replace or swap with the next one, to get from one to the other. */
size_t distance(std::string_view from, std::string_view to)
{
    std::vector<std::vector<size_t>> cost(from.size() + 1, std::vector<size_t>(to.size() + 1));
    for (size_t i = 0; i <= from.size(); ++i) {
        for (size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const bool same = lower(from[i - 1]) == lower(to[j - 1]);
            cost[i][j] =
                std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && lower(from[i - 1]) == lower(to[j - 2]) &&
                lower(from[i - 2]) == lower(to[j - 1]))
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[from.size()][to.size()];
}

} // namespace

std::string nearest_name(std::string_view name, const std::vector<std::string> &known)
{
    if (name.empty() || name.size() > kLongestName) return {};
    std::string nearest;
    size_t fewest = std::max<size_t>(1, name.size() / 3) + 1; // so many changes are too many
    for (const std::string &candidate : known) {
        if (candidate.size() > kLongestName) continue;
        const size_t changes = distance(name, candidate);
        // Of two that are as near, the one that was begun and not finished.
        const bool begun = changes == fewest && !nearest.empty() && candidate.rfind(name, 0) == 0;
        if (changes >= fewest && !begun) continue;
        fewest = changes;
        nearest = candidate;
    }
    return nearest;
}

std::string did_you_mean(std::string_view name, const std::vector<std::string> &known)
{
    const std::string nearest = nearest_name(name, known);
    return nearest.empty() ? "" : " (did you mean \"" + nearest + "\"?)";
}

} // namespace vboard_app
