/* list_command.cpp - "nvrec list": what is recorded of which camera, and what was pinned. */
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "archive/time_of_day.h"
#include "commands/archive_options.h"
#include "commands/command.h"
#include "console/text.h"
#include "wall/report.h"

namespace nvrec
{
namespace
{

/* Files follow one another within this. */
constexpr int64_t kJoined_us = 2'000'000;
constexpr double kListedMegabyte_bytes = 1e6;

struct ListOptions {
    ArchiveOptions archive;
    bool files = false;
};

std::string span_json(const TimeSpan &span)
{
    return "\"from\": " + json_string(iso_time(span.from_us)) +
           ", \"to\": " + json_string(iso_time(span.to_us));
}

/* A list's members, one a line. */
class JsonList
{
public:
    explicit JsonList(const std::string &name) : text_("  \"" + name + "\": [") {}
    void add(const std::string &member)
    {
        text_ += (empty_ ? "\n    {" : ",\n    {") + member + "}";
        empty_ = false;
    }
    std::string end() const { return text_ + (empty_ ? "]" : "\n  ]"); }

private:
    std::string text_;
    bool empty_ = true;
};

void print_tables(Index &index, const std::vector<CameraRow> &cameras, const IndexQuery &query, bool files)
{
    std::printf("%3s  %-12s %-26s %-26s %9s\n", "ch", "camera", "from", "to", "length");
    for (const CameraRow &camera : cameras) {
        IndexQuery of_camera = query;
        of_camera.cameras = {camera.id};
        for (const TimeSpan &span : index.recorded(of_camera, kJoined_us))
            std::printf("%3d  %-12s %-26s %-26s %9s\n", camera.channel, camera.shown().c_str(),
                        time_text(span.from_us).c_str(), time_text(span.to_us).c_str(),
                        duration_text(span.to_us - span.from_us).c_str());
    }
    if (files) {
        std::printf("\n%3s  %-26s %9s %10s  %s\n", "ch", "from", "length", "MB", "file");
        for (const SegmentRow &row : index.segments(query)) {
            const std::string state = file_state(row, index.directory());
            std::printf("%3d  %-26s %9s %10.1f  %s%s\n", row.channel, time_text(row.from_us).c_str(),
                        duration_text(row.to_us - row.from_us).c_str(),
                        static_cast<double>(row.bytes) / kListedMegabyte_bytes, row.path.c_str(),
                        (state.empty() ? state : " (" + state + ")").c_str());
        }
    }
    auto heading = [first = true](const char *text) mutable {
        if (std::exchange(first, false)) std::printf("\n%s\n", text);
    };
    auto gaps_heading = heading;
    for (const GapRow &gap : index.gaps(query)) {
        gaps_heading("gaps");
        std::printf("%3d  %-12s %-26s %-26s %9s  %s\n", gap.channel, gap.camera.c_str(),
                    time_text(gap.from_us).c_str(), time_text(gap.to_us).c_str(),
                    duration_text(gap.to_us - gap.from_us).c_str(), gap.why.c_str());
    }
    auto events_heading = heading;
    for (const EventRow &event : index.events(query)) {
        events_heading("events");
        std::printf("%3d  %-12s %-26s %-10s %s\n", event.channel, event.camera.c_str(),
                    time_text(event.at_us).c_str(), event.kind.c_str(), event.text.c_str());
    }
    auto pins_heading = heading;
    for (const PinRow &pin : index.pins()) {
        pins_heading("pinned");
        std::printf("%3d  %-12s %-26s %-26s\n", pin.channel, pin.camera.c_str(),
                    time_text(pin.span.from_us).c_str(), time_text(pin.span.to_us).c_str());
    }
}

void print_json(Index &index, const std::vector<CameraRow> &cameras, const IndexQuery &query, bool files)
{
    auto of = [](int channel, const std::string &camera) {
        return text("\"channel\": %d, \"camera\": ", channel) + json_string(camera) + ", ";
    };
    JsonList recorded("recorded"), file_list("files"), gaps("gaps"), events("events"), pins("pins");
    for (const CameraRow &camera : cameras) {
        IndexQuery of_camera = query;
        of_camera.cameras = {camera.id};
        for (const TimeSpan &span : index.recorded(of_camera, kJoined_us))
            recorded.add(of(camera.channel, camera.shown()) + span_json(span));
    }
    if (files) {
        for (const SegmentRow &row : index.segments(query))
            file_list.add(of(row.channel, row.camera) + span_json({row.from_us, row.to_us}) +
                          ", \"stream\": " + json_string(row.stream) +
                          ", \"file\": " + json_string(row.path) +
                          text(", \"bytes\": %lld, \"finished\": %s", static_cast<long long>(row.bytes),
                               row.finished ? "true" : "false"));
    }
    for (const GapRow &gap : index.gaps(query))
        gaps.add(of(gap.channel, gap.camera) + span_json({gap.from_us, gap.to_us}) +
                 ", \"why\": " + json_string(gap.why));
    for (const EventRow &event : index.events(query))
        events.add(of(event.channel, event.camera) + "\"at\": " + json_string(iso_time(event.at_us)) +
                   ", \"kind\": " + json_string(event.kind) + ", \"text\": " + json_string(event.text));
    for (const PinRow &pin : index.pins())
        pins.add(of(pin.channel, pin.camera) + span_json(pin.span));
    std::printf("{\n%s,\n%s%s,\n%s,\n%s\n}\n", recorded.end().c_str(),
                files ? (file_list.end() + ",\n").c_str() : "", gaps.end().c_str(), events.end().c_str(),
                pins.end().c_str());
}

int run_list(const ListOptions &options)
{
    TimeSpan span;
    if (const int code = read_span(options.archive, &span); code != kExitDone) return code;
    Archive archive;
    std::vector<CameraRow> cameras;
    if (const int code = open_archive_for(options.archive, &archive, &cameras); code != kExitDone)
        return code;
    const IndexQuery query = {numbers_of(cameras), options.archive.stream, span};
    if (options.archive.json)
        print_json(archive.index, cameras, query, options.files);
    else
        print_tables(archive.index, cameras, query, options.files);
    return kExitDone;
}

} // namespace

Command list_command(CLI::App &app)
{
    auto options = std::make_shared<ListOptions>();
    CLI::App *list = app.add_subcommand("list", "List what is recorded of every camera");
    list->footer("Times as of find. Exit status: 0 done, 2 command line, 3 there are no recordings.");
    add_archive_options(*list, options->archive, false);
    add_span_options(*list, options->archive, false);
    add_stream_option(*list, options->archive);
    list->add_flag("--files", options->files, "Every file, too");
    add_json_option(*list, options->archive);
    return {list, [options] { return run_list(*options); }};
}

} // namespace nvrec
