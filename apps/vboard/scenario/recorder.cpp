/* recorder.cpp - see recorder.h. */
#include "scenario/recorder.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>

#include <nlohmann/json.hpp>
#include <yaml-cpp/yaml.h>

#include "api/description.h"
#include "scenario/image.h"
#include "scenario/values.h"

namespace vboard_app
{
namespace
{

using nlohmann::json;

constexpr int64_t kEarlier_us = 1'000'000; // a program that is faster than when it was recorded
constexpr int64_t kSpan_us = 4'000'000;    // from then on until it must have been seen

void emit(YAML::Emitter &out, const json &value);

/* Texts in quotes: "off", "1" and "~" are no texts to YAML without them. */
void emit_text(YAML::Emitter &out, const std::string &text)
{
    out << YAML::DoubleQuoted << text;
}

void emit_list(YAML::Emitter &out, const json &list)
{
    out << YAML::Flow << YAML::BeginSeq;
    for (const json &item : list)
        emit(out, item);
    out << YAML::EndSeq;
}

void emit(YAML::Emitter &out, const json &value)
{
    if (value.is_string())
        emit_text(out, value.get<std::string>());
    else if (value.is_array())
        emit_list(out, value);
    else
        out << value.dump();
}

/* A value alone where the request has one parameter that stands first, otherwise all by name. */
void emit_parameters(YAML::Emitter &out, const std::string &name, const json &parameters)
{
    const json *request = api::find_request(name);
    const json arguments = request != nullptr ? request->value("arguments", json::array()) : json::array();
    if (parameters.size() == 1 && !arguments.empty() &&
        parameters.contains(arguments[0].get<std::string>())) {
        emit(out, parameters.begin().value());
        return;
    }
    out << YAML::Flow << YAML::BeginMap;
    for (const auto &[key, value] : parameters.items()) {
        out << YAML::Key << key << YAML::Value;
        emit(out, value);
    }
    out << YAML::EndMap;
}

template <typename Fill> std::string flow_map(Fill fill)
{
    YAML::Emitter out;
    out << YAML::Flow << YAML::BeginMap;
    fill(out);
    out << YAML::EndMap;
    // The emitter breaks long flow maps into lines; a step stays on one.
    std::string line = out.c_str();
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line;
}

/* What moves the clock of a board that is stepped: when it is played, "vboard test" does that. */
bool moves_clock(const std::string &request)
{
    return request.starts_with("clock.");
}

std::string number_text(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

[[noreturn]] void cannot_write(const std::string &path)
{
    throw RequestError("refused", "cannot write " + path, "file");
}

} // namespace

ScenarioRecorder::ScenarioRecorder(std::string path, RecordingStart start)
    : path_(std::move(path)), start_(std::move(start))
{
}

int64_t ScenarioRecorder::since_start(int64_t board_time_us) const
{
    return std::max<int64_t>(0, board_time_us - start_.program_began_us);
}

std::string ScenarioRecorder::add(const std::string &request, const json &parameters, int64_t board_time_us)
{
    const int64_t at = since_start(board_time_us);
    const std::scoped_lock guard(mutex_);
    last_us_ = std::max(last_us_, at);
    if (start_.stepped && moves_clock(request)) return {};
    std::string line = flow_map([&](YAML::Emitter &out) {
        out << YAML::Key << "at" << YAML::Value << scenario::duration_text(at);
        out << YAML::Key << request << YAML::Value;
        emit_parameters(out, request, parameters);
    });
    steps_.push_back(line);
    last_step_us_ = at;
    return line;
}

std::string ScenarioRecorder::expect(const Picture &screen, const std::vector<int> &region, double difference,
                                     int64_t board_time_us, std::string &picture)
{
    const int64_t at = since_start(board_time_us);
    scenario::Image image = scenario::image_of(screen);
    if (!region.empty()) {
        const scenario::Region part = region.size() == 4
                                          ? scenario::Region{region[0], region[1], region[2], region[3]}
                                          : scenario::Region{};
        if (!scenario::lies_in(part, image.width, image.height))
            throw RequestError("bad_parameter",
                               "\"region\" leaves the screen of " + std::to_string(image.width) + " x " +
                                   std::to_string(image.height),
                               "region");
        image = scenario::part_of(image, part);
    }
    const std::scoped_lock guard(mutex_);
    const std::filesystem::path file(path_);
    picture = file.stem().string() + "-" + std::to_string(expectations_.size() + 1) + ".png";
    const std::string picture_path = (file.parent_path() / picture).string();
    if (!scenario::write_png(picture_path, image)) cannot_write(picture_path);

    std::string line = flow_map([&](YAML::Emitter &out) {
        out << YAML::Key << "at" << YAML::Value;
        if (start_.stepped) {
            out << scenario::duration_text(at);
        } else {
            const int64_t from = std::max({int64_t{0}, at - kEarlier_us, std::min(last_step_us_, at)});
            out << scenario::duration_text(from);
            out << YAML::Key << "within" << YAML::Value << scenario::duration_text(at - from + kSpan_us);
        }
        out << YAML::Key << "screen" << YAML::Value;
        emit_text(out, picture);
        if (!region.empty()) {
            out << YAML::Key << "region" << YAML::Value;
            emit_list(out, region);
        }
        out << YAML::Key << "difference" << YAML::Value << number_text(difference) + "%";
    });
    expectations_.push_back(line);
    last_us_ = std::max(last_us_, at);
    return line;
}

std::string ScenarioRecorder::text() const
{
    const std::scoped_lock guard(mutex_);
    std::string text = "# Recorded on a running board. Played by: vboard test " +
                       std::filesystem::path(path_).filename().string() + " --";
    for (const std::string &argument : start_.program)
        text += " " + argument;
    // A line end in an argument would end the comment.
    std::replace(text.begin(), text.end(), '\n', ' ');
    text +=
        start_.stepped
            ? "\n# The clock was stepped while this was recorded: its times are exact.\n"
            : "\n# The clock ran while this was recorded: pictures are looked for within a span around "
              "their\n"
              "# time. With \"clock: stepped\" a program that waits on the board alone is played exactly.\n";
    text += std::string("board: {monitor: ") + (start_.plugged ? "plugged" : "unplugged") +
            ", clock: " + (start_.stepped ? "stepped" : "realtime") + "}\n";
    text += "lasts: " + scenario::duration_text(last_us_) + "\n";
    const auto list = [&text](const char *name, const std::vector<std::string> &lines) {
        text += std::string(name) + (lines.empty() ? ": []\n" : ":\n");
        for (const std::string &line : lines)
            text += "  - " + line + "\n";
    };
    list("steps", steps_);
    list("expect", expectations_);
    return text;
}

void ScenarioRecorder::write() const
{
    const std::string all = text();
    std::ofstream file(path_, std::ios::binary | std::ios::trunc);
    file << all;
    file.close();
    if (!file) cannot_write(path_);
}

size_t ScenarioRecorder::steps() const
{
    const std::scoped_lock guard(mutex_);
    return steps_.size();
}

size_t ScenarioRecorder::expectations() const
{
    const std::scoped_lock guard(mutex_);
    return expectations_.size();
}

} // namespace vboard_app
