/*
 * requests.h - all requests of the description, those that are served outside of the program included:
 * pictures, calls, and the recording of scenarios. Any thread; several at a time.
 */
#ifndef VBOARD_APP_SERVER_REQUESTS_H
#define VBOARD_APP_SERVER_REQUESTS_H

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include <nlohmann/json.hpp>

#include "board/board.h"
#include "server/call_ring.h"

namespace vboard_app
{

class ScenarioRecorder;

/* An answer as HTTP has it. */
struct Reply {
    int status = 200;
    std::string type = "application/json";
    std::string headers; // further ones, a line each
    std::string body;
};

Reply json_reply(const nlohmann::json &content);
Reply error_reply(const std::string &code, const std::string &message, const std::string &parameter = {});

class Requests
{
public:
    Requests(Board &board, std::string folder);
    ~Requests(); // a scenario that is being recorded is written

    /* Carry out a request; its parameters are checked here. Never throws. */
    Reply carry_out(const std::string &name, const nlohmann::json &parameters);

    /* The result of "board", with what is known here. */
    nlohmann::json board_told();

    /* The program has begun, for the first time or again: times of a scenario count from here. */
    void program_began();

    /* Begin to record a scenario. @throws RequestError */
    nlohmann::json start_recording(const std::string &file);

    CallRing &calls() { return calls_; }

    /* Called with each line that is added to a scenario. Set before any request. */
    std::function<void(const std::string &line)> on_recorded;

private:
    nlohmann::json served(const std::string &name, const nlohmann::json &parameters);
    nlohmann::json fault(const std::string &name, const nlohmann::json &parameters);
    Reply screen(const nlohmann::json &parameters);
    nlohmann::json expect(const nlohmann::json &parameters);
    nlohmann::json stop_recording();
    void record(const std::string &name, const nlohmann::json &parameters, int64_t board_us);
    bool is_recording();
    int64_t board_time();
    int64_t board_time_by_hand();

    Board &board_;
    const std::string folder_;
    CallRing calls_;
    std::mutex recording_mutex_;             // guards what follows
    int64_t began_us_ = 0;                   // the board's clock when the program began
    int64_t began_wall_us_ = 0;              // and its wall clock
    uint64_t began_starts_ = 0;              // at which of its starts that was
    bool is_stepped_ = false;                // of the board that is recorded
    int64_t zero_us_ = 0, zero_wall_us_ = 0; // its clocks where the times of the scenario begin
    int64_t told_us_ = 0;                    // its clock when it was told last, and when that was
    std::chrono::steady_clock::time_point told_at_;
    std::shared_ptr<ScenarioRecorder> recorder_; // null: none
};

/* What the monitor shows, or a display device; black where the board has no power. @throws RequestError */
Picture picture_of(Board &board, const int *device, bool settled);

} // namespace vboard_app

#endif
