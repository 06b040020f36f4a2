/* help.h - what `vboard ctl --help` says, all of it from the description. */
#ifndef VBOARD_APP_CTL_HELP_H
#define VBOARD_APP_CTL_HELP_H

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace vboard_app
{

std::string help_of_all();
std::string help_of(const nlohmann::json &request);

/* For the completion of the shell: verbs, or the options and values of one; a word a line. */
std::string words_to_complete(const std::string &verb);

} // namespace vboard_app

#endif
