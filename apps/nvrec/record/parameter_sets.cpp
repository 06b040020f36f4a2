/* parameter_sets.cpp - see parameter_sets.h. */
#include "record/parameter_sets.h"

#include <algorithm>

namespace nvrec
{
namespace
{

constexpr uint8_t kStartCode[] = {0, 0, 0, 1};
constexpr size_t kShortStartCode_bytes = 3; /* 0 0 1 */

/* Offset of the next 0 0 1 from `at` on, or the size. */
size_t find_start_code(std::span<const uint8_t> unit, size_t at)
{
    const auto found = std::search(unit.begin() + static_cast<ptrdiff_t>(at), unit.end(), kStartCode + 1,
                                   kStartCode + sizeof kStartCode);
    return static_cast<size_t>(found - unit.begin());
}

bool is_parameter_set(uint8_t header, Codec codec)
{
    const CodecTraits &traits = traits_of(codec);
    const int type = header >> traits.type_shift & traits.type_mask;
    return type >= traits.first_parameter_set && type <= traits.last_parameter_set;
}

bool contains(const std::vector<std::span<const uint8_t>> &sets, std::span<const uint8_t> set)
{
    return std::any_of(sets.begin(), sets.end(), [&](std::span<const uint8_t> other) {
        return std::equal(other.begin(), other.end(), set.begin(), set.end());
    });
}

} // namespace

std::vector<uint8_t> parameter_sets_of(std::span<const uint8_t> unit, Codec codec)
{
    std::vector<std::span<const uint8_t>> sets;
    size_t at = find_start_code(unit, 0);
    while (at + kShortStartCode_bytes < unit.size()) {
        const size_t begin = at + kShortStartCode_bytes;
        const size_t next = find_start_code(unit, begin);
        size_t end = next;
        while (end > begin && unit[end - 1] == 0) /* of a four-byte start code, or padding */
            --end;
        const std::span<const uint8_t> set = unit.subspan(begin, end - begin);
        if (!set.empty() && is_parameter_set(set[0], codec) && !contains(sets, set)) sets.push_back(set);
        at = next;
    }
    std::vector<uint8_t> bytes;
    for (const std::span<const uint8_t> set : sets) {
        bytes.insert(bytes.end(), std::begin(kStartCode), std::end(kStartCode));
        bytes.insert(bytes.end(), set.begin(), set.end());
    }
    return bytes;
}

} // namespace nvrec
