/*
 * control_address.h - the control socket's path as an address, and a check of who can write to its directory.
 *
 * Threads: any.
 */
#pragma once

#include <cstring>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>

namespace nvrec
{

constexpr size_t kLongestControlPath = sizeof(sockaddr_un::sun_path) - 1;

/** @return false = the path is empty, or too long for a socket. */
inline bool make_control_address(const std::string &path, sockaddr_un *address)
{
    *address = {};
    address->sun_family = AF_UNIX;
    if (path.empty() || path.size() > kLongestControlPath) return false;
    std::memcpy(address->sun_path, path.data(), path.size());
    return true;
}

/** Make the directory of a socket, for its user alone. @return empty, or why no socket may stand there */
std::string control_directory_problem(const std::string &path);

} // namespace nvrec
