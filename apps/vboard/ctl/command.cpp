/* command.cpp - `vboard ctl`: a verb, the request that it stands for, and the answer. */
#include "ctl/command.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include <nlohmann/json.hpp>

#include "api/check.h"
#include "api/description.h"
#include "board/board.h"
#include "ctl/client.h"
#include "ctl/help.h"
#include "ctl/readable.h"
#include "ctl/verb.h"

namespace
{

using namespace vboard_app;
using nlohmann::json;

constexpr int kDone = 0, kRefused = 1, kUsage = 2;

int list_boards(bool as_json)
{
    json list = json::array();
    for (const RunningBoard &board : running_boards())
        list.push_back({{"name", board.name}, {"pid", board.pid}, {"url", board.url}});
    if (as_json)
        printf("%s\n", list.dump(2).c_str());
    else
        printf("%s", list.empty() ? "no board runs\n" : readable(list, "name pid url").c_str());
    return kDone;
}

/* The kind of picture that a file's ending says. @throws UsageError */
std::string kind_of_picture(const std::string &file)
{
    const size_t dot = file.rfind('.');
    const std::string ending = dot == std::string::npos ? "" : file.substr(dot);
    if (ending == ".png") return "png";
    if (ending == ".jpg" || ending == ".jpeg") return "jpeg";
    if (ending == ".i420" || ending == ".yuv") return "i420";
    throw UsageError("\"" + file + "\" ends neither in .png nor in .jpg nor in .i420");
}

void save(const std::string &file, const std::string &bytes)
{
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) throw std::runtime_error("\"" + file + "\" cannot be written: " + std::strerror(errno));
}

/* What the description says of a request's result, in its order. */
nlohmann::ordered_json described_result(const std::string &name)
{
    const auto whole = nlohmann::ordered_json::parse(api::description_text());
    for (const auto &request : whole.at("requests"))
        if (request.at("name") == name) return request.value("result", nlohmann::ordered_json());
    return {};
}

/* The answer on standard output. */
void show(const std::string &name, const ClientAnswer &answer, bool as_json)
{
    const json result = json::parse(answer.body, nullptr, false);
    if (result.is_discarded()) throw std::runtime_error("the board answered with something else than JSON");
    if (as_json || name == "description")
        printf("%s\n", result.dump(2).c_str());
    else if (name == "fault.calls")
        for (const std::string call : result.at("calls"))
            printf("%s\n", call.c_str());
    else if (!result.empty())
        printf("%s", readable(result, described_result(name)).c_str());
    if (fflush(stdout) != 0) throw std::runtime_error("standard output cannot be written");
}

int refuse(const ClientAnswer &answer)
{
    const json content = json::parse(answer.body, nullptr, false);
    const bool told = content.is_object() && content.contains("error");
    fprintf(stderr, "vboard ctl: %s\n",
            told ? content["error"].value("message", "").c_str()
                 : "the board answered with something else than JSON");
    return kRefused;
}

int carry_out(const CommandLine &line)
{
    size_t words_of_verb = 0;
    const json &request = find_verb(line.words, &words_of_verb);
    if (line.help) {
        printf("%s", help_of(request).c_str());
        return kDone;
    }
    const std::string name = request.at("name");
    std::map<std::string, std::string> texts = texts_of(request, line, words_of_verb);
    std::string file;
    if (name == "screen") {
        file = texts.count("file") > 0 ? texts["file"] : "";
        if (file.empty()) throw UsageError("\"shot\" wants a file: vboard ctl shot wall.png");
        texts.erase("file");
        if (texts.count("type") == 0) texts["type"] = kind_of_picture(file);
    }
    json parameters;
    try {
        parameters = api::check_texts(name, texts);
    } catch (const RequestError &error) {
        throw UsageError(error.what());
    }
    const ClientAnswer answer = ask(find_board(line.board), request, parameters);
    if (answer.status != 200) return refuse(answer);
    if (file.empty())
        show(name, answer, line.json);
    else
        save(file, answer.body);
    return kDone;
}

/* For the completion: words that may follow a verb, or the calls that the board knows. */
int complete(const CommandLine &line, const std::string &verb)
{
    if (verb == "fault calls") {
        const json &request = *api::find_request("fault.calls");
        const json calls =
            json::parse(ask(find_board(line.board), request, json::object()).body, nullptr, false);
        for (const std::string call : calls.at("calls"))
            printf("%s\n", call.c_str());
        return kDone;
    }
    if (verb == "boards") {
        for (const RunningBoard &board : running_boards())
            printf("%s\n", board.name.c_str());
        return kDone;
    }
    printf("%s", words_to_complete(verb).c_str());
    return kDone;
}

} // namespace

int ctl_command(int argc, char **argv)
{
    try {
        if (argc >= 2 && strcmp(argv[1], "--complete") == 0) {
            try {
                return complete({}, argc > 2 ? argv[2] : "");
            } catch (const std::exception &) {
                return kRefused; // the shell shows nothing
            }
        }
        CommandLine line = read_command_line(argc, argv);
        if (line.words.empty() && line.help) {
            printf("%s", help_of_all().c_str());
            return kDone;
        }
        if (line.words.empty()) throw UsageError("which verb? See vboard ctl --help");
        if (line.words.front() == "list" && line.words.size() == 1 && line.options.empty())
            return list_boards(line.json);
        return carry_out(line);
    } catch (const UsageError &error) {
        fprintf(stderr, "vboard ctl: %s\n", error.what());
        return kUsage;
    } catch (const std::exception &error) {
        fprintf(stderr, "vboard ctl: %s\n", error.what());
        return kRefused;
    }
}
