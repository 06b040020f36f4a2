/*
 * recorder.h - what is pressed, pulled and set on a board becomes a scenario that "vboard test" plays.
 *
 * Times are the board's clock since the program's start. On a board whose clock was taken before the
 * program began they are exact, and the steps of the clock themselves are not written: "vboard test" steps
 * by itself. On one whose clock runs, what the screen is to show is looked for within a span around its
 * time, because the program is never twice equally fast; it does not begin before the step before it.
 *
 * Any thread.
 */
#ifndef VBOARD_APP_SCENARIO_RECORDER_H
#define VBOARD_APP_SCENARIO_RECORDER_H

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "board/board.h"

namespace vboard_app
{

/* What stands at the head of the scenario. */
struct RecordingStart {
    bool stepped = false;             // the clock was taken before the program began
    bool plugged = true;              // the monitor, when the recording begins
    int64_t program_began_us = 0;     // board clock then: 0 of the scenario's times
    std::vector<std::string> program; // for a comment: how it is played
};

class ScenarioRecorder
{
public:
    /* @param path  of the scenario; pictures go beside it as NAME-1.png, NAME-2.png, ... */
    ScenarioRecorder(std::string path, RecordingStart start);

    /*
     * A request that was carried out and that the description marks with "records".
     * @return the line that was added; empty: this one is not written
     */
    std::string add(const std::string &request, const nlohmann::json &parameters, int64_t board_time_us);

    /*
     * What the screen shows is to be there when the scenario is played.
     * @param region      x, y, width, height; empty: the whole screen
     * @param difference  percent of the pixels that may differ
     * @param picture     receives the file's name, relative to the scenario
     * @return the line that was added
     * @throws RequestError bad_parameter (the region leaves the screen), refused (the file cannot be written)
     */
    std::string expect(const Picture &screen, const std::vector<int> &region, double difference,
                       int64_t board_time_us, std::string &picture);

    /*
     * Write the scenario; it can go on after that.
     * @throws RequestError refused: the file cannot be written
     */
    void write() const;

    /* The whole text of the scenario. */
    std::string text() const;

    const std::string &path() const { return path_; }
    size_t steps() const;
    size_t expectations() const;

private:
    int64_t since_start(int64_t board_time_us) const;

    const std::string path_;
    const RecordingStart start_;
    mutable std::mutex mutex_; // guards what follows
    std::vector<std::string> steps_;
    std::vector<std::string> expectations_;
    int64_t last_step_us_ = 0;
    int64_t last_us_ = 0;
};

} // namespace vboard_app

#endif
