/* scratch_folder.cpp - see scratch_folder.h. */
#include "scratch_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

ScratchFolder::ScratchFolder()
{
    std::string pattern = std::filesystem::temp_directory_path() / "board-io-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    folder_ = pattern;
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string ScratchFolder::file(const std::string &name, const std::string &bytes) const
{
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
}

std::string bytes_of(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
