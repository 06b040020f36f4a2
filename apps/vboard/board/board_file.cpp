/* board_file.cpp - see board_file.h. */
#include "board/board_file.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include "board/board.h"

namespace vboard_app
{
namespace
{

namespace fs = std::filesystem;

[[noreturn]] void outside(const std::string &name, const std::string &parameter)
{
    throw RequestError("forbidden", "\"" + name + "\" lies outside of the board's folder", parameter);
}

/* The path with every link in it followed; empty: there is none. */
std::string real_path(const std::string &path)
{
    char buffer[PATH_MAX];
    return realpath(path.c_str(), buffer) == nullptr ? "" : buffer;
}

bool lies_in(const std::string &path, const std::string &folder)
{
    return path == folder || path.compare(0, folder.size() + 1, folder == "/" ? folder : folder + "/") == 0;
}

} // namespace

std::string file_within(const std::string &folder, const std::string &name, const std::string &parameter)
{
    const fs::path relative(name);
    if (relative.is_absolute()) outside(name, parameter);
    for (const fs::path &step : relative)
        if (step == "..") outside(name, parameter);
    if (!relative.has_filename() || relative.filename() == ".")
        throw RequestError("bad_parameter", "\"" + name + "\" is no name of a file", parameter);

    const std::string root = real_path(folder);
    if (root.empty()) throw RequestError("refused", "the board's folder is gone: " + folder, parameter);
    const std::string parent = real_path((fs::path(root) / relative.parent_path()).string());
    if (parent.empty())
        throw RequestError("bad_parameter", "there is no folder for \"" + name + "\"", parameter);
    if (!lies_in(parent, root)) outside(name, parameter);

    std::string path = (fs::path(parent) / relative.filename()).string();
    std::string target = path;
    struct stat entry = {};
    if (lstat(path.c_str(), &entry) != 0) {
        if (errno == ENOENT) return path;
        throw RequestError("bad_parameter", "\"" + name + "\": " + std::strerror(errno), parameter);
    }
    if (S_ISLNK(entry.st_mode)) {
        target = real_path(path);
        if (target.empty() || !lies_in(target, root))
            outside(name, parameter); // a link into nothing may lead out
        if (stat(target.c_str(), &entry) != 0) outside(name, parameter);
    }
    // A pipe or a device could hold the program up for ever.
    if (!S_ISREG(entry.st_mode))
        throw RequestError("bad_parameter", "\"" + name + "\" is no regular file", parameter);
    return target;
}

} // namespace vboard_app
