/* board_functions.cpp - see board_functions.h. */
#include "board_functions.h"

#include <algorithm>

namespace vboard_remote
{

bool board_is_linked()
{
#define ADDRESS_OF(name) reinterpret_cast<const void *>(&(name)),
    const void *const addresses[] = {VBOARD_REMOTE_FUNCTIONS(ADDRESS_OF)};
#undef ADDRESS_OF
    return std::ranges::all_of(addresses, [](const void *address) { return address != nullptr; });
}

} // namespace vboard_remote
