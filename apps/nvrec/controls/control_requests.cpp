/* control_requests.cpp - see control_requests.h. */
#include "controls/control_requests.h"

#include <sstream>

#include "controls/board_state.h"
#include "controls/key_names.h"
#include "controls/keys.h"
#include "wall/exit_code.h"
#include "wall/terminal.h"

namespace nvrec
{
namespace
{

constexpr auto kKeyLimit = std::chrono::seconds(10); /* sixteen panes are laid out anew in 2 s */
constexpr auto kMainLimit = std::chrono::seconds(15);

std::vector<std::string> words_of(const std::string &request)
{
    std::istringstream stream(request);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

/* A word of the request in an answer: nothing but plain letters goes back. */
std::string quoted(const std::string &word)
{
    std::string safe;
    for (const char letter : word)
        safe += letter > ' ' && letter < 0x7f ? letter : '?';
    return "\"" + safe + "\"";
}

} // namespace

/* Without its default socket a recorder is still a recorder; without the one asked for it is not. */
bool ControlRequests::start(WallControl &wall)
{
    wall_ = &wall;
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
    const std::vector<std::string> words = words_of(request);
    if (words.empty()) return "error: an empty request\n";
    if (words[0] == "key") return press(words);
    if (words[0] == "board" && words.size() == 1) {
        return on_main_thread([this] {
            std::vector<BoardRow> rows = wall_rows(*wall_);
            for (BoardRow &row : board_rows())
                rows.push_back(std::move(row));
            return "ok\n" + board_text(rows);
        });
    }
    return "error: there is no request " + quoted(words[0]) +
           " of that form; there are: key NAME [remote|panel], board\n";
}

std::string ControlRequests::press(const std::vector<std::string> &words)
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

std::string ControlRequests::on_main_thread(std::function<std::string()> work)
{
    const auto job = std::make_shared<Job>(Job{std::move(work), {}});
    std::unique_lock guard(lock_);
    if (stopped_) return "error: the recorder is ending\n";
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
    do_work(); /* what came meanwhile still has an answer */
    server_.stop();
}

} // namespace nvrec
