/* differences.cpp - where two sequences differ. */
#include "trace/differences.h"

#include <algorithm>
#include <utility>

namespace vboard_app
{
namespace
{

using Sequence = std::span<const uint64_t>;

// Pairs of places that belong together, ascending: the longest common subsequence. Its length from every pair
// of places to the ends stands in a table of which `lengths` is the memory.
std::vector<std::pair<size_t, size_t>> common(Sequence a, Sequence b, std::vector<uint16_t> &lengths)
{
    const size_t columns = b.size() + 1;
    lengths.assign((a.size() + 1) * columns, 0);
    for (size_t i = a.size(); i-- > 0;) {
        uint16_t *row = &lengths[i * columns];
        const uint16_t *below = row + columns;
        for (size_t j = b.size(); j-- > 0;)
            row[j] = a[i] == b[j] ? static_cast<uint16_t>(below[j + 1] + 1) : std::max(below[j], row[j + 1]);
    }
    std::vector<std::pair<size_t, size_t>> pairs;
    for (size_t i = 0, j = 0; i < a.size() && j < b.size();) {
        if (a[i] == b[j])
            pairs.emplace_back(i++, j++);
        else if (lengths[(i + 1) * columns + j] >= lengths[i * columns + j + 1])
            ++i;
        else
            ++j;
    }
    return pairs;
}

// Differences that touch are one.
void add(std::vector<Difference> &all, Difference one)
{
    if (one.a_from == one.a_to && one.b_from == one.b_to) return;
    if (!all.empty() && all.back().a_to == one.a_from && all.back().b_to == one.b_from) {
        all.back().a_to = one.a_to;
        all.back().b_to = one.b_to;
        return;
    }
    all.push_back(one);
}

} // namespace

std::vector<Difference> differences(Sequence a, Sequence b, size_t window)
{
    std::vector<Difference> all;
    std::vector<uint16_t> lengths;
    size_t i = 0, j = 0;
    // What both end with belongs together, however long one of them is in between.
    size_t ending = 0;
    while (ending < std::min(a.size(), b.size()) && a[a.size() - 1 - ending] == b[b.size() - 1 - ending])
        ++ending;
    a = a.first(a.size() - ending);
    b = b.first(b.size() - ending);
    for (;;) {
        while (i < a.size() && j < b.size() && a[i] == b[j]) {
            ++i;
            ++j;
        }
        const Sequence left = a.subspan(i, std::min(window, a.size() - i));
        const Sequence right = b.subspan(j, std::min(window, b.size() - j));
        if (left.empty() || right.empty()) {
            add(all, {i, a.size(), j, b.size()});
            return all;
        }
        // At the far end of a window pairs are found that a wider one would not have: only its
        // beginning counts, unless there is no more.
        const bool last = i + left.size() == a.size() && j + right.size() == b.size();
        const size_t left_limit = last ? left.size() : left.size() - left.size() / 4;
        const size_t right_limit = last ? right.size() : right.size() - right.size() / 4;
        size_t done_left = 0, done_right = 0;
        for (const auto &[x, y] : common(left, right, lengths)) {
            if (x >= left_limit || y >= right_limit) break;
            add(all, {i + done_left, i + x, j + done_right, j + y});
            done_left = x + 1;
            done_right = y + 1;
        }
        if (last || (done_left == 0 && done_right == 0)) {
            const size_t to_left = last ? left.size() : (left.size() + 1) / 2;
            const size_t to_right = last ? right.size() : (right.size() + 1) / 2;
            add(all, {i + done_left, i + to_left, j + done_right, j + to_right});
            done_left = to_left;
            done_right = to_right;
        }
        i += done_left;
        j += done_right;
        if (last) return all;
    }
}

} // namespace vboard_app
