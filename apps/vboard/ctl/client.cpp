/* client.cpp - see client.h; HTTP by libcurl. */
#include "ctl/client.h"

#include <memory>
#include <stdexcept>

#include <curl/curl.h>
#include <nlohmann/json.hpp>

#include "api/nearest.h"

namespace vboard_app
{
namespace
{

using nlohmann::json;

struct Cleanup {
    void operator()(CURL *curl) const { curl_easy_cleanup(curl); }
    void operator()(curl_slist *list) const { curl_slist_free_all(list); }
};

size_t append(char *bytes, size_t size, size_t count, void *to)
{
    static_cast<std::string *>(to)->append(bytes, size * count);
    return size * count;
}

std::string text_of(const json &value)
{
    if (value.is_string()) return value;
    if (value.is_array()) {
        std::string text;
        for (const json &element : value)
            text += (text.empty() ? "" : ",") + element.dump();
        return text;
    }
    return value.dump();
}

std::string query_of(CURL *curl, const json &parameters)
{
    std::string query;
    for (const auto &[name, value] : parameters.items()) {
        const std::string text = text_of(value);
        char *escaped = curl_easy_escape(curl, text.c_str(), static_cast<int>(text.size()));
        query += (query.empty() ? "?" : "&") + name + "=" + (escaped != nullptr ? escaped : "");
        curl_free(escaped);
    }
    return query;
}

} // namespace

ClientAnswer ask(const RunningBoard &board, const json &request, const json &parameters)
{
    const std::unique_ptr<CURL, Cleanup> curl(curl_easy_init());
    if (!curl) throw std::runtime_error("no connection can be made");
    const std::string method = request.at("method");
    const bool in_body = method == "POST";
    std::string url = board.url + "api/1" + request.at("path").get<std::string>();
    if (!in_body) url += query_of(curl.get(), parameters);
    const std::string body = in_body ? parameters.dump() : "";

    curl_slist *list = curl_slist_append(nullptr, ("Authorization: Bearer " + board.token).c_str());
    list = curl_slist_append(list, "Content-Type: application/json");
    list = curl_slist_append(list, "Expect:");
    const std::unique_ptr<curl_slist, Cleanup> headers(list);

    ClientAnswer answer;
    char why[CURL_ERROR_SIZE] = "";
    curl_easy_setopt(curl.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_CUSTOMREQUEST, method.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl.get(), CURLOPT_PROXY, ""); // the board is here, whatever the user's proxy is
    curl_easy_setopt(curl.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_ERRORBUFFER, why);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &answer.body);
    if (in_body) {
        curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDS, body.c_str());
        curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
    }
    const CURLcode result = curl_easy_perform(curl.get());
    if (result != CURLE_OK)
        throw std::runtime_error("the board \"" + board.name +
                                 "\" is not reached: " + (*why != '\0' ? why : curl_easy_strerror(result)));
    curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &answer.status);
    const char *type = nullptr;
    curl_easy_getinfo(curl.get(), CURLINFO_CONTENT_TYPE, &type);
    answer.type = type != nullptr ? type : "";
    return answer;
}

RunningBoard find_board(const std::string &name)
{
    const std::vector<RunningBoard> boards = running_boards();
    std::vector<std::string> names;
    std::string all;
    for (const RunningBoard &board : boards) {
        if (board.name == name || (name.empty() && boards.size() == 1)) return board;
        names.push_back(board.name);
        all += (all.empty() ? "" : ", ") + board.name;
    }
    if (boards.empty()) throw std::runtime_error("no board runs: start one with vboard run");
    if (name.empty()) throw std::runtime_error("several boards run, choose one with --board: " + all);
    throw std::runtime_error("no board named \"" + name + "\" runs" + did_you_mean(name, names));
}

} // namespace vboard_app
