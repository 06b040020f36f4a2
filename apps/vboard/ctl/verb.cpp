/* verb.cpp - see verb.h. */
#include "ctl/verb.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "api/description.h"
#include "api/nearest.h"

namespace vboard_app
{
namespace
{

using nlohmann::json;

size_t count_words(const std::string &verb)
{
    return 1 + static_cast<size_t>(std::count(verb.begin(), verb.end(), ' '));
}

std::string first_words(const std::vector<std::string> &words, size_t count)
{
    std::string text;
    for (size_t i = 0; i < std::min(count, words.size()); ++i)
        text += (text.empty() ? "" : " ") + words[i];
    return text;
}

std::vector<std::string> arguments_of(const json &request)
{
    return request.value("arguments", std::vector<std::string>());
}

} // namespace

CommandLine read_command_line(int argc, char **argv)
{
    CommandLine line;
    bool only_words = false;
    for (int i = 1; i < argc; ++i) {
        const std::string text = argv[i];
        if (!only_words && text == "--") {
            only_words = true;
        } else if (only_words || text.compare(0, 2, "--") != 0) {
            if (!only_words && text == "-h")
                line.help = true;
            else
                line.words.push_back(text); // -1 is a number
        } else if (text == "--json") {
            line.json = true;
        } else if (text == "--help") {
            line.help = true;
        } else {
            const size_t equals = text.find('=');
            const std::string name = text.substr(2, equals == std::string::npos ? equals : equals - 2);
            if (equals == std::string::npos && i + 1 == argc)
                throw UsageError("\"" + text + "\" wants a value; see vboard ctl VERB --help");
            const std::string value = equals == std::string::npos ? argv[++i] : text.substr(equals + 1);
            if (name == "board")
                line.board = value;
            else
                line.options[name] = value;
        }
    }
    return line;
}

const json &find_verb(const std::vector<std::string> &words, size_t *words_of_verb)
{
    const json *best = nullptr;
    std::vector<std::string> verbs = {"list"};
    for (const json &request : api::description().at("requests")) {
        const std::string verb = request.at("verb");
        verbs.push_back(verb);
        const size_t count = count_words(verb);
        if (count > words.size() || first_words(words, count) != verb) continue;
        if (best != nullptr && count <= *words_of_verb) continue;
        best = &request;
        *words_of_verb = count;
    }
    if (best != nullptr) return *best;
    std::string nearest = nearest_name(first_words(words, 2), verbs);
    if (nearest.empty()) nearest = nearest_name(words.front(), verbs);
    std::string following;
    for (const std::string &verb : verbs)
        if (verb.compare(0, words.front().size() + 1, words.front() + " ") == 0)
            following += (following.empty() ? "" : ", ") + verb.substr(words.front().size() + 1);
    if (!following.empty() && (words.size() == 1 || nearest.empty()))
        throw UsageError("\"" + words.front() + "\" is followed by one of " + following);
    throw UsageError("there is no verb \"" + words.front() + "\"" +
                     (nearest.empty() ? "; see vboard ctl --help" : " (did you mean \"" + nearest + "\"?)"));
}

std::map<std::string, std::string> texts_of(const json &request, const CommandLine &line,
                                            size_t words_of_verb)
{
    const std::vector<std::string> arguments = arguments_of(request);
    const std::string verb = request.at("verb");
    std::map<std::string, std::string> texts = line.options;
    std::vector<std::string> known;
    for (const auto &[name, description] : api::parameters_of(request).items())
        known.push_back(name);
    for (const auto &[name, text] : line.options)
        if (std::find(known.begin(), known.end(), name) == known.end() &&
            std::find(arguments.begin(), arguments.end(), name) == arguments.end()) {
            std::string unknown = "\"" + verb + "\"";
            unknown.append(" has no option --").append(name).append(did_you_mean(name, known));
            throw UsageError(unknown);
        }
    for (size_t i = words_of_verb; i < line.words.size(); ++i) {
        const size_t place = i - words_of_verb;
        if (place >= arguments.size())
            throw UsageError("\"" + verb + "\" takes " +
                             (arguments.empty() ? "no arguments"
                                                : "no more than " + std::to_string(arguments.size()) +
                                                      (arguments.size() == 1 ? " argument" : " arguments")) +
                             ": \"" + line.words[i] + "\" is left over");
        if (!texts.emplace(arguments[place], line.words[i]).second)
            throw UsageError("\"" + arguments[place] + "\" is given twice");
    }
    return texts;
}

} // namespace vboard_app
