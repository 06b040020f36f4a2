/* board_functions.cpp - see board_functions.h. */
#include "board_functions.h"

namespace vboard_remote
{

bool board_is_linked()
{
#define IS_THERE(name) &&reinterpret_cast<void *>(&name) != nullptr
    return true VBOARD_REMOTE_FUNCTIONS(IS_THERE);
#undef IS_THERE
}

} // namespace vboard_remote
