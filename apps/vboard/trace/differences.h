/*
 * differences.h - where two sequences differ: the longest common subsequence of a window that moves along
 * both, so that the time and the memory stay in proportion to their length. Within a window the difference is
 * the smallest possible one; what was moved further than a window counts as missing here and as new there.
 */
#ifndef VBOARD_APP_DIFFERENCES_H
#define VBOARD_APP_DIFFERENCES_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vboard_app
{

/* a[a_from, a_to) stands where b[b_from, b_to) stands in the other one; either may be empty. */
struct Difference {
    size_t a_from = 0, a_to = 0, b_from = 0, b_to = 0;
};

constexpr size_t kDifferenceWindow = 1500;

/* In ascending order, with something that is the same between any two. */
std::vector<Difference> differences(std::span<const uint64_t> a, std::span<const uint64_t> b,
                                    size_t window = kDifferenceWindow);

} // namespace vboard_app

#endif
