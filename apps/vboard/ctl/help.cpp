/* help.cpp - see help.h. */
#include "ctl/help.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "api/description.h"
#include "ir_buttons.h"
#include "panel_keys.h"

namespace vboard_app
{
namespace
{

using nlohmann::json;

constexpr size_t kColumn = 34; // where the explanations begin
constexpr size_t kWidth = 100;

std::string upper(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return text;
}

bool may_be_left_out(const json &parameter)
{
    return parameter.value("optional", false) || parameter.contains("default");
}

std::string synopsis(const json &request)
{
    std::string line = request.at("verb");
    const json &parameters = api::parameters_of(request);
    for (const std::string argument : request.value("arguments", json::array())) {
        const bool optional = parameters.contains(argument) && may_be_left_out(parameters.at(argument));
        line += optional ? " [" + upper(argument) + "]" : " " + upper(argument);
    }
    return line;
}

/* Words in lines of their own width, behind what stands at the left. */
std::string entry(const std::string &left, const std::string &about)
{
    std::string text = "  " + left;
    size_t column = text.size();
    if (column + 2 > kColumn) {
        text += "\n";
        column = 0;
    }
    text += std::string(kColumn - column, ' ');
    column = kColumn;
    for (size_t begin = 0; begin < about.size();) {
        const size_t end = std::min(about.find(' ', begin), about.size());
        if (column > kColumn && column + 1 + end - begin > kWidth) {
            text += "\n" + std::string(kColumn, ' ');
            column = kColumn;
        } else if (column > kColumn) {
            text += " ";
            ++column;
        }
        text += about.substr(begin, end - begin);
        column += end - begin;
        begin = end + 1;
    }
    return text + "\n";
}

std::string values_of(const json &parameter)
{
    std::string text;
    for (const std::string value : parameter.value("values", json::array()))
        text += (text.empty() ? "" : "|") + value;
    if (!text.empty()) return text;
    if (parameter.at("type") == "boolean") return "on|off";
    if (parameter.at("type") == "array") return "X,Y,W,H";
    const std::string unit = parameter.value("unit", "");
    if (unit == "us" || unit == "ms") return "DURATION";
    return upper(parameter.at("type") == "integer" || parameter.at("type") == "number" ? "number" : "text");
}

std::string about(const json &parameter)
{
    std::string text = parameter.value("about", "");
    if (parameter.contains("minimum") && parameter.value("unit", "") != "us")
        text += (text.empty() ? "" : "; ") + parameter.at("minimum").dump() + " to " +
                parameter.at("maximum").dump() +
                (parameter.contains("unit") ? " " + parameter.at("unit").get<std::string>() : "");
    if (parameter.contains("default"))
        text += (text.empty() ? "" : "; ") + std::string("otherwise ") +
                (parameter.at("default").is_string() ? parameter.at("default").get<std::string>()
                                                     : parameter.at("default").dump());
    return text;
}

} // namespace

std::string help_of_all()
{
    std::string text = "usage: vboard ctl [--board NAME] [--json] VERB [ARGUMENTS...] [--OPTION VALUE...]\n\n"
                       "Drives a board that vboard run has started.\n\n";
    text += entry("list", "The boards that run.");
    for (const json &request : api::description().at("requests"))
        text += entry(synopsis(request), request.at("about"));
    text += "\n" + entry("--board NAME", "which board, where several run") +
            entry("--json", "print the answer as JSON") + entry("VERB --help", "its arguments and options");
    return text +
           "\nThe exit status is 0, 1 when the board refused, 2 when the command was not understood.\n";
}

std::string help_of(const json &request)
{
    std::string text =
        "usage: vboard ctl " + synopsis(request) + "\n\n" + request.at("about").get<std::string>() + "\n";
    const json &parameters = api::parameters_of(request);
    const std::vector<std::string> arguments = request.value("arguments", std::vector<std::string>());
    if (!parameters.empty()) text += "\n";
    for (const std::string &argument : arguments)
        if (parameters.contains(argument))
            text += entry(upper(argument) + "  " + values_of(parameters.at(argument)),
                          about(parameters.at(argument)));
    for (const auto &[name, parameter] : parameters.items())
        if (std::find(arguments.begin(), arguments.end(), name) == arguments.end())
            text += entry("--" + name + " " + values_of(parameter), about(parameter));
    return text;
}

std::string words_to_complete(const std::string &verb)
{
    std::string words;
    const auto add = [&](const std::string &word) { words += word + "\n"; };
    if (verb.empty()) {
        add("list");
        for (const json &request : api::description().at("requests"))
            add(request.at("verb"));
        return words;
    }
    for (const json &request : api::description().at("requests")) {
        if (request.at("verb") != verb) continue;
        const std::vector<std::string> arguments = request.value("arguments", std::vector<std::string>());
        for (const auto &[name, parameter] : api::parameters_of(request).items()) {
            const bool is_argument = std::find(arguments.begin(), arguments.end(), name) != arguments.end();
            if (!is_argument) add("--" + name);
            if (!is_argument) continue;
            for (const std::string value : parameter.value("values", json::array()))
                add(value);
            if (parameter.at("type") == "boolean") add("on\noff");
            if (parameter.value("is", "") == "file") add("FILE");
            if (name == "call") add("CALL");
        }
        if (verb == "shot") add("FILE");
#define ADD_NAME(name, code) add(name);
        if (verb == "press" || verb == "hold") {
            IR_BUTTONS(ADD_NAME)
        }
        if (verb == "panel") {
            PANEL_KEYS(ADD_NAME)
        }
#undef ADD_NAME
    }
    return words;
}

} // namespace vboard_app
