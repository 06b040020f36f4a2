/*
 * verb.h - a command line of `vboard ctl`, read as the description has it: a verb of one or two words, the
 * parameters that are listed as arguments in their places, all of them as --NAME VALUE too.
 */
#ifndef VBOARD_APP_CTL_VERB_H
#define VBOARD_APP_CTL_VERB_H

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace vboard_app
{

/* The command line is not understood. */
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

struct CommandLine {
    std::string board; // --board
    bool json = false; // --json
    bool help = false; // --help
    std::vector<std::string> words;
    std::map<std::string, std::string> options; // all others
};

/* @throws UsageError */
CommandLine read_command_line(int argc, char **argv);

/* The request whose verb the words begin with; the longest counts. @throws UsageError */
const nlohmann::json &find_verb(const std::vector<std::string> &words, size_t *words_of_verb);

/* Texts of the request's parameters by name, from the rest of the words and the options. @throws UsageError
 */
std::map<std::string, std::string> texts_of(const nlohmann::json &request, const CommandLine &line,
                                            size_t words_of_verb);

} // namespace vboard_app

#endif
