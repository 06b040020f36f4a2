/* requests.cpp - see requests.h. */
#include "server/requests.h"

#include <algorithm>

#include "api/check.h"
#include "api/description.h"
#include "api/nearest.h"
#include "board/board_file.h"
#include "scenario/recorder.h"
#include "server/image_file.h"

namespace vboard_app
{
namespace
{

using nlohmann::json;

constexpr int kJpegQuality = 85;
constexpr uint32_t kMonitorWidth = 1920, kMonitorHeight = 1080; // when there is none to ask

std::string text_of(const json &content)
{
    // The board's own texts may hold bytes that are no UTF-8.
    return content.dump(-1, ' ', false, json::error_handler_t::replace) + "\n";
}

} // namespace

Reply json_reply(const json &content)
{
    Reply reply;
    reply.body = text_of(content);
    return reply;
}

Reply error_reply(const std::string &code, const std::string &message, const std::string &parameter)
{
    json error = {{"code", code}, {"message", message}};
    if (!parameter.empty()) error["parameter"] = parameter;
    Reply reply = json_reply({{"error", error}});
    reply.status = api::status_of(code);
    return reply;
}

Picture picture_of(Board &board, const int *device, bool settled)
{
    try {
        return board.picture(device, settled);
    } catch (const RequestError &error) {
        // Without power the monitor sees no signal; a display device is not there at all.
        if (device != nullptr || error.code != "power_off") throw;
        return black_picture(kMonitorWidth, kMonitorHeight);
    }
}

Requests::Requests(Board &board, std::string folder)
    : board_(board), folder_(std::move(folder)), calls_(board)
{
}

Requests::~Requests()
{
    try {
        if (recorder_) recorder_->write();
    } catch (const RequestError &error) {
        fprintf(stderr, "vboard: %s\n", error.what());
    }
}

Reply Requests::carry_out(const std::string &name, const json &parameters)
{
    try {
        const json checked = api::check(name, parameters);
        if (name == "screen") return screen(checked);
        // Before the request, as it may end the program, and its clock with it.
        int64_t board_us = -1;
        if (api::find_request(name)->value("records", false) && is_recording())
            board_us = name == "power" ? board_time_by_hand() : board_time();
        const json result = served(name, checked);
        if (board_us >= 0) record(name, checked, board_us);
        return json_reply(result);
    } catch (const RequestError &error) {
        return error_reply(error.code, error.what(), error.parameter);
    } catch (const std::exception &error) {
        return error_reply("refused", error.what());
    }
}

json Requests::served(const std::string &name, const json &parameters)
{
    if (name == "board") return board_told();
    if (name == "calls") return calls_.asked(parameters);
    if (name == "record.start") return start_recording(parameters.at("file"));
    if (name == "record.expect") return expect(parameters);
    if (name == "record.stop") return stop_recording();
    if (name == "fault" || name == "fault.clear") return fault(name, parameters);
    return board_.request(name, parameters);
}

/* The board tells that a call's name is unknown; the one that was meant is found here. */
json Requests::fault(const std::string &name, const json &parameters)
{
    try {
        return board_.request(name, parameters);
    } catch (const RequestError &error) {
        if (error.code != "refused" || !parameters.contains("call")) throw;
        const std::string call = parameters.at("call");
        const std::vector<std::string> known =
            board_.request("fault.calls", json::object()).at("calls").get<std::vector<std::string>>();
        if (std::find(known.begin(), known.end(), call) != known.end()) throw;
        throw RequestError(error.code, error.what() + did_you_mean(call, known), "call");
    }
}

Reply Requests::screen(const json &parameters)
{
    const bool has_device = parameters.contains("device");
    const int device = has_device ? parameters.at("device").get<int>() : 0;
    Picture picture = picture_of(board_, has_device ? &device : nullptr, parameters.at("settled"));
    if (parameters.contains("region")) picture = cut_out(picture, parameters.at("region"));
    if (parameters.contains("width") && parameters.at("width").get<uint32_t>() != picture.width)
        picture = scaled(picture, parameters.at("width"));

    const std::string type = parameters.at("type");
    Reply reply;
    reply.headers =
        "X-Picture-Size: " + std::to_string(picture.width) + "x" + std::to_string(picture.height) + "\n";
    if (type == "png") {
        reply.type = "image/png";
        reply.body = as_png(picture);
    } else if (type == "jpeg") {
        reply.type = "image/jpeg";
        reply.body = as_jpeg(picture, kJpegQuality);
    } else {
        reply.type = "application/octet-stream";
        reply.body.assign(picture.bytes.begin(), picture.bytes.end());
    }
    return reply;
}

json Requests::board_told()
{
    json board = board_.request("board", json::object());
    std::lock_guard lock(recording_mutex_);
    if (recorder_) board["recording"] = recorder_->path();
    return board;
}

bool Requests::is_recording()
{
    std::lock_guard lock(recording_mutex_);
    return recorder_ != nullptr;
}

/*
 * The time of a scenario goes on when the board is started again, where a stepped clock begins anew; the
 * wall clock goes on as well, as its chip has a battery.
 */
int64_t Requests::board_time()
{
    try {
        const json clock = board_.request("state", json::object()).at("clock");
        const int64_t board_us = clock.at("us"), wall_us = clock.at("wall_us");
        std::lock_guard lock(recording_mutex_);
        told_us_ = std::max(told_us_, is_stepped_ ? zero_us_ + wall_us - zero_wall_us_ : board_us);
        told_at_ = std::chrono::steady_clock::now();
        return told_us_;
    } catch (const RequestError &) {
        return board_time_by_hand();
    }
}

/* Without a program that could be asked: it is off, or does not answer, for which its power is switched. */
int64_t Requests::board_time_by_hand()
{
    std::lock_guard lock(recording_mutex_);
    if (is_stepped_) return told_us_; // it stands
    return told_us_ +
           std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - told_at_)
               .count();
}

void Requests::program_began()
{
    try {
        const uint64_t starts = board_.request("board", json::object()).at("starts");
        const json clock = board_.request("state", json::object()).at("clock");
        const int64_t now_us = clock.at("us"), wall_us = clock.at("wall_us");
        std::lock_guard lock(recording_mutex_);
        if (starts == began_starts_) return;
        began_starts_ = starts;
        began_us_ = now_us;
        began_wall_us_ = wall_us;
    } catch (const RequestError &) {
        // It has ended already.
    }
}

json Requests::start_recording(const std::string &file)
{
    program_began();
    const std::string path = file_within(folder_, file, "file");
    const json board = board_.request("board", json::object());
    RecordingStart start;
    start.stepped = board.at("stepped");
    start.program = board.at("program");
    int64_t now_us = 0, wall_us = 0;
    try {
        const json state = board_.request("state", json::object());
        start.plugged = state.at("monitor").at("plugged");
        now_us = state.at("clock").at("us");
        wall_us = state.at("clock").at("wall_us");
    } catch (const RequestError &) {
        // It is plugged in when a board begins.
    }
    std::lock_guard lock(recording_mutex_);
    if (recorder_)
        throw RequestError("refused", "a scenario is being recorded already: " + recorder_->path());
    start.program_began_us = zero_us_ = began_us_;
    zero_wall_us_ = began_wall_us_;
    is_stepped_ = start.stepped;
    told_us_ = std::max(zero_us_, is_stepped_ ? zero_us_ + wall_us - zero_wall_us_ : now_us);
    told_at_ = std::chrono::steady_clock::now();
    recorder_ = std::make_shared<ScenarioRecorder>(path, start);
    recorder_->write(); // a file that cannot be written is told now
    return {{"file", path}};
}

json Requests::expect(const json &parameters)
{
    std::shared_ptr<ScenarioRecorder> recorder;
    {
        std::lock_guard lock(recording_mutex_);
        recorder = recorder_;
    }
    if (!recorder) throw RequestError("refused", "no scenario is being recorded");
    const int64_t board_us = board_time();
    const Picture picture = picture_of(board_, nullptr, false);
    const std::vector<int> region = parameters.value("region", std::vector<int>());
    std::string file;
    const std::string line = recorder->expect(picture, region, parameters.at("difference"), board_us, file);
    if (on_recorded) on_recorded(line);
    return {{"picture", file}};
}

json Requests::stop_recording()
{
    std::lock_guard lock(recording_mutex_);
    if (!recorder_) throw RequestError("refused", "no scenario is being recorded");
    recorder_->write();
    json result = {{"file", recorder_->path()},
                   {"steps", recorder_->steps()},
                   {"expectations", recorder_->expectations()}};
    recorder_.reset();
    return result;
}

void Requests::record(const std::string &name, const json &parameters, int64_t board_us)
{
    std::string line;
    {
        std::lock_guard lock(recording_mutex_);
        if (!recorder_) return;
        line = recorder_->add(name, parameters, board_us);
    }
    if (!line.empty() && on_recorded) on_recorded(line);
}

} // namespace vboard_app
