/* control_requests.cpp - see control_requests.h. */
#include "controls/control_requests.h"

#include <algorithm>

#include "console/exit_code.h"
#include "console/terminal.h"
#include "console/utf8.h"
#include "controls/board_state.h"
#include "controls/key_names.h"
#include "controls/keys.h"

namespace nvrec
{
namespace
{

constexpr auto kKeyLimit = std::chrono::seconds(10); /* sixteen panes are laid out anew in 2 s */
constexpr auto kMainLimit = std::chrono::seconds(15);

/* A word of the request, to be repeated in an answer: only plain letters of it. */
std::string quoted(const std::string &word)
{
    std::string safe;
    for (const char letter : word)
        safe += letter > ' ' && letter < 0x7f ? letter : '?';
    return "\"" + safe + "\"";
}

} // namespace

std::string request_word(const std::string &word)
{
    std::string text = "\"";
    for (const char letter : word) {
        if (letter == '"' || letter == '\\') text += '\\';
        text += letter == '\n' ? ' ' : letter;
    }
    return text + "\"";
}

std::optional<std::vector<std::string>> request_words(const std::string &request)
{
    std::vector<std::string> words;
    bool in_word = false;
    bool in_quotes = false;
    for (size_t i = 0; i < request.size(); ++i) {
        const char letter = request[i];
        const bool blank = letter == ' ' || letter == '\t' || letter == '\r';
        if (blank && !in_quotes) {
            in_word = false;
            continue;
        }
        if (!in_word) words.emplace_back();
        in_word = true;
        if (letter == '"') {
            in_quotes = !in_quotes;
        } else if (letter == '\\' && in_quotes && i + 1 < request.size()) {
            words.back() += request[++i];
        } else {
            words.back() += letter;
        }
    }
    if (in_quotes) return std::nullopt;
    return words;
}

/* One row for each request: its form, what it does, and which function answers it. */
struct ControlRequests::Request {
    std::string_view word;
    std::string_view form;
    std::string_view meaning;
    std::string (ControlRequests::*answer)(const Words &words);
};

const std::vector<ControlRequests::Request> &ControlRequests::requests()
{
    static const std::vector<Request> all = {
        {"key", "key NAME [remote|panel]", "press a button of the board", &ControlRequests::press},
        {"board", "board", "lines, lamps, watchdog, clock, chips, screen", &ControlRequests::tell_board},
        {"status", "status [json]", "cameras, decoders, recordings, disk, board",
         &ControlRequests::tell_status},
        {"metrics", "metrics", "the same for Prometheus", &ControlRequests::tell_metrics},
        {"event", "event CAMERA [TEXT]", "something happened at a camera", &ControlRequests::note_event},
        {"reload", "reload", "take up a changed configuration", &ControlRequests::reload},
        {"help", "help", "this list", &ControlRequests::help},
    };
    return all;
}

/* The recorder runs without its default socket, but it ends if a socket was asked for and cannot be had. */
bool ControlRequests::start(WallControl &wall)
{
    wall_ = &wall;
    started_ = Clock::now();
    {
        const std::scoped_lock guard(lock_); // the page may ask already
        stopped_ = false;
    }
    if (path_ == "none") return true;
    const std::string path = path_.empty() ? default_control_path() : path_;
    if (server_.start(path, [this](const std::string &request) { return answer(request); }) ==
        ControlServer::Start::kListening)
        return true;
    wall.terminal().error("control socket " + path + ": " + server_.error() +
                          "; --control gives this one a place of its own");
    if (path_.empty()) return true;
    wall.end(kExitBoardFailed);
    return false;
}

std::string ControlRequests::answer(const std::string &request)
{
    if (!is_utf8(request)) return "error: the request is not in UTF-8\n";
    const std::optional<Words> words = request_words(request);
    if (!words) return "error: a quote is not closed\n";
    if (words->empty()) return "error: an empty request\n";
    const auto &all = requests();
    const auto found = std::ranges::find(all, words->front(), &Request::word);
    std::string answer = found == all.end() ? "" : (this->*found->answer)(*words);
    if (!answer.empty()) return answer;
    std::string forms;
    for (const Request &one : all)
        forms += (forms.empty() ? "" : ", ") + std::string(one.form);
    return "error: there is no request " + quoted(words->front()) + " of that form; there are: " + forms +
           "\n";
}

std::string ControlRequests::help(const Words &words)
{
    if (words.size() != 1) return {};
    std::string lines = "ok\n";
    size_t width = 0;
    for (const Request &one : requests())
        width = std::max(width, one.form.size());
    for (const Request &one : requests())
        lines += std::string(one.form) + std::string(width - one.form.size() + 2, ' ') +
                 std::string(one.meaning) + "\n";
    return lines;
}

std::string ControlRequests::press(const Words &words)
{
    if (words.size() < 2 || words.size() > 3) return "error: it is: key NAME [remote|panel]\n";
    const Button *button = button_named(words[1]);
    if (!button) return "error: there is no key " + quoted(words[1]) + "\n";
    const bool panel = words.size() == 3 && words[2] == "panel";
    if (words.size() == 3 && !panel && words[2] != "remote")
        return "error: keys are on the remote or on the panel, not on " + quoted(words[2]) + "\n";
    const bool came = keys_.press(*button, panel ? Keys::Way::kPanel : Keys::Way::kRemote, kKeyLimit);
    return came ? "ok\n" : "error: the key did not reach the recorder\n";
}

std::string ControlRequests::tell_board(const Words &words)
{
    if (words.size() != 1) return {};
    return on_main_thread([this] {
        std::vector<BoardRow> rows = wall_rows(*wall_);
        for (BoardRow &row : board_rows())
            rows.push_back(std::move(row));
        return "ok\n" + board_text(rows);
    });
}

std::string ControlRequests::tell_status(const Words &words)
{
    const bool json = words.size() == 2 && words[1] == "json";
    if (words.size() != 1 && !json) return {};
    return on_main_thread([this, json] {
        const RecorderStatus status =
            collect_status(*wall_, hooks_.archive ? hooks_.archive() : std::nullopt, started_);
        return "ok\n" + (json ? status_json(status) : status_table(status));
    });
}

std::string ControlRequests::tell_metrics(const Words &words)
{
    if (words.size() != 1) return {};
    return on_main_thread([this] {
        return "ok\n" + status_metrics(collect_status(
                            *wall_, hooks_.archive ? hooks_.archive() : std::nullopt, started_));
    });
}

std::string ControlRequests::note_event(const Words &words)
{
    if (words.size() < 2) return {};
    if (!hooks_.event) return "error: this recorder records nothing by events\n";
    std::string text;
    for (size_t i = 2; i < words.size(); ++i)
        text += (i > 2 ? " " : "") + words[i];
    return on_main_thread([this, camera = words[1], text] {
        const int channel = camera_named(*wall_, camera);
        if (channel < 0) return "error: there is no camera " + quoted(camera) + "\n";
        hooks_.event(channel, "outside", text);
        return std::string("ok\n");
    });
}

std::string ControlRequests::reload(const Words &words)
{
    if (words.size() != 1) return {};
    if (!hooks_.reload) return "error: this recorder was not started by \"nvrec run\"\n";
    return on_main_thread([this] {
        bool ok = true;
        const std::string lines = hooks_.reload(&ok);
        if (ok) return "ok\n" + lines;
        std::string reason; /* is one line */
        for (const char letter : lines.substr(0, lines.find_last_not_of('\n') + 1))
            reason += letter == '\n' ? std::string("; ") : std::string(1, letter);
        return "error: " + reason + "\n";
    });
}

std::string ControlRequests::on_main_thread(std::function<std::string()> work)
{
    const auto job = std::make_shared<Job>(Job{std::move(work), {}});
    std::unique_lock guard(lock_);
    if (stopped_) return "error: the recorder is starting or ending\n";
    jobs_.push_back(job);
    wall_->wake();
    if (!done_.wait_for(guard, kMainLimit, [&] { return job->answer.has_value(); }))
        return "error: the recorder is busy\n";
    return *job->answer;
}

void ControlRequests::do_work()
{
    std::vector<std::shared_ptr<Job>> jobs;
    {
        const std::scoped_lock guard(lock_);
        jobs.swap(jobs_);
    }
    for (const auto &job : jobs) {
        std::string answer = job->work();
        const std::scoped_lock guard(lock_);
        job->answer = std::move(answer);
        done_.notify();
    }
}

Clock::time_point ControlRequests::take_turn(Clock::time_point)
{
    do_work();
    return Clock::time_point::max();
}

void ControlRequests::stop()
{
    {
        const std::scoped_lock guard(lock_);
        stopped_ = true;
    }
    do_work(); /* answer the requests that came meanwhile */
    server_.stop();
}

} // namespace nvrec
