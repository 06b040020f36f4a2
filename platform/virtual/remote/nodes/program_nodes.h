/* program_nodes.h - device nodes that the program opened by itself. */
#ifndef VBOARD_REMOTE_PROGRAM_NODES_H
#define VBOARD_REMOTE_PROGRAM_NODES_H

#include <string>
#include <vector>

namespace vboard_remote
{

struct ProgramNode {
    std::string path;
    int descriptor; // the program's
};

/* Those that are open now, by descriptor. */
std::vector<ProgramNode> program_nodes();

} // namespace vboard_remote

#endif
