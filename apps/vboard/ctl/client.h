/* client.h - a request to a board that runs, over HTTP. */
#ifndef VBOARD_APP_CTL_CLIENT_H
#define VBOARD_APP_CTL_CLIENT_H

#include <map>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "server/run_directory.h"

namespace vboard_app
{

struct ClientAnswer {
    long status = 0;
    std::string type, body;
};

/* Carry out a request of the description. @throws std::runtime_error: the board is not reached */
ClientAnswer ask(const RunningBoard &board, const nlohmann::json &request, const nlohmann::json &parameters);

/*
 * The board of that name; without a name the only one that runs.
 * @throws std::runtime_error: there is none, or more than one
 */
RunningBoard find_board(const std::string &name);

} // namespace vboard_app

#endif
