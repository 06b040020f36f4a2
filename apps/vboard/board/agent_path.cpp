/* agent_path.cpp - see agent_path.h. */
#include "board/agent_path.h"

#include <filesystem>

#ifndef VBOARD_LIBRARY_FOLDER
#define VBOARD_LIBRARY_FOLDER "../lib" // from the program's folder to the one of installed libraries
#endif

namespace vboard_app
{

std::string agent_path()
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    for (const char *folder : {VBOARD_LIBRARY_FOLDER, "../lib"}) {
        const fs::path library = (program.parent_path() / folder / "libvboard-remote.so").lexically_normal();
        if (fs::exists(library, error)) return library.string();
    }
    return {};
}

} // namespace vboard_app
