/* faults.cpp - see faults.h. */
#include "config/faults.h"

#include <algorithm>
#include <numeric>

namespace nvrec::config
{
namespace
{

/* How many letters have to be put in, taken out, changed or exchanged with their neighbour. */
size_t distance(std::string_view from, std::string_view to)
{
    std::vector<size_t> before, above(to.size() + 1), row(to.size() + 1);
    std::iota(above.begin(), above.end(), size_t{0});
    for (size_t i = 1; i <= from.size(); ++i) {
        row[0] = i;
        for (size_t j = 1; j <= to.size(); ++j) {
            const size_t changed = above[j - 1] + (from[i - 1] != to[j - 1]);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, changed});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before = above;
        above.swap(row);
    }
    return above[to.size()];
}

} // namespace

std::string Fault::shown() const
{
    std::string shown = file;
    if (line > 0) shown += ":" + std::to_string(line);
    if (!key.empty()) shown += ": " + key;
    return shown + ": " + text;
}

std::string_view nearest(std::string_view word, const std::vector<std::string_view> &candidates)
{
    std::string_view best;
    size_t least = std::max<size_t>(2, word.size() / 3) + 1; /* further away it is a guess */
    for (const std::string_view candidate : candidates) {
        const size_t away = distance(word, candidate);
        if (away >= least || away >= candidate.size()) continue;
        least = away;
        best = candidate;
    }
    return best;
}

std::string suggestion(std::string_view word, const std::vector<std::string_view> &candidates)
{
    const std::string_view found = nearest(word, candidates);
    return found.empty() ? "" : "; did you mean \"" + std::string(found) + "\"?";
}

} // namespace nvrec::config
