/* control_address.cpp - see control_address.h, and control_socket.h for the usual path. */
#include "controls/control_address.h"

#include <cstdlib>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include "controls/control_socket.h"

namespace nvrec
{
namespace
{

constexpr mode_t kOthersWrite = S_IWGRP | S_IWOTH;

bool is_private_directory(const std::string &path)
{
    struct stat found;
    return lstat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode) && found.st_uid == getuid() &&
           (found.st_mode & 077) == 0;
}

/* A directory in which nobody else can put another socket in the place of ours, or hold our lock. */
bool is_guarded_directory(const std::string &path)
{
    struct stat found;
    if (stat(path.c_str(), &found) != 0) return true; /* if it is missing, bind() gives the better message */
    return (found.st_uid == getuid() || found.st_uid == 0) && (found.st_mode & kOthersWrite) == 0;
}

} // namespace

std::string default_control_path()
{
    const char *runtime = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe): nobody writes it
    if (runtime && *runtime) return std::string(runtime) + "/nvrec.socket";
    return "/tmp/nvrec-" + std::to_string(getuid()) + "/nvrec.socket";
}

std::string control_directory_problem(const std::string &path)
{
    std::filesystem::path directory = std::filesystem::path(path).parent_path();
    if (directory.empty()) directory = ".";
    mkdir(directory.c_str(), 0700); /* the next calls tell whether it is there */
    if (path == default_control_path() && !is_private_directory(directory))
        return directory.string() + " is not a directory of this user alone";
    if (!is_guarded_directory(directory))
        return "others can write to the directory " + directory.string() +
               ", and could put a socket of theirs in its place";
    return {};
}

} // namespace nvrec
