/* program_nodes.cpp - see program_nodes.h. */
#include "nodes/program_nodes.h"

namespace vboard_remote
{

std::vector<ProgramNode> program_nodes()
{
    return {};
}

} // namespace vboard_remote
