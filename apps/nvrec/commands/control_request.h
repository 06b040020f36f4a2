/* control_request.h - a subcommand that is one request to a running recorder. */
#pragma once

#include <string>

namespace nvrec
{

/**
 * Ask, and print the answer.
 * @param socket  empty = the user's default
 * @return the exit status
 */
int make_request(const std::string &socket, const std::string &request);

} // namespace nvrec
