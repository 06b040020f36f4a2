/*
 * status_metrics.cpp - see status.h: Prometheus' text format. Names end in their unit, and in _total
 * where they only rise. A value that is not known has no line.
 */
#include <cmath>
#include <cstdio>
#include <optional>

#include "controls/status.h"
#include "controls/status_names.h"

namespace nvrec
{
namespace
{

constexpr double kMicrosecondsInOne = 1e6;

using Number = std::optional<double>;

double number(uint64_t count)
{
    return static_cast<double>(count);
}

struct CameraMetric {
    const char *name;
    const char *type;
    const char *help;
    Number (*value)(const CameraLine &);
};

Number decoder_count(const CameraLine &line, uint64_t host::DecoderCounters::*count)
{
    if (!line.decoder) return std::nullopt;
    return number((*line.decoder).*count);
}

Number known(double value)
{
    if (value <= 0) return std::nullopt;
    return value;
}

constexpr CameraMetric kCameraMetrics[] = {
    {"nvrec_camera_up", "gauge", "1 while pictures of the camera come and are taken.",
     [](const CameraLine &line) -> Number { return line.status.state == CameraState::kLive ? 1 : 0; }},
    {"nvrec_camera_main_stream_up", "gauge",
     "1 while the main stream comes, which is recorded while the sub stream is shown.",
     [](const CameraLine &line) -> Number {
         if (!line.status.main_state) return std::nullopt;
         return *line.status.main_state == CameraState::kLive ? 1 : 0;
     }},
    {"nvrec_camera_state_since_timestamp_seconds", "gauge",
     "Time of day since which the camera's state holds.",
     [](const CameraLine &line) {
         return known(static_cast<double>(line.status.since_wall_us) / kMicrosecondsInOne);
     }},
    {"nvrec_camera_frames_per_second", "gauge", "Frames that the camera sends in a second.",
     [](const CameraLine &line) -> Number { return line.status.frame_rate; }},
    {"nvrec_camera_bytes_per_second", "gauge", "Bytes of pictures that the camera sends in a second.",
     [](const CameraLine &line) -> Number { return line.status.bit_rate_bps / 8; }},
    {"nvrec_camera_key_frame_distance_seconds", "gauge", "Time between the last two key frames.",
     [](const CameraLine &line) { return known(line.status.key_distance_s); }},
    {"nvrec_camera_jitter_seconds", "gauge", "Jitter of the frames' arrival.",
     [](const CameraLine &line) -> Number { return line.status.jitter_ms / 1000; }},
    {"nvrec_camera_loss_ratio", "gauge", "Share of the camera's packets that did not come, 0 to 1.",
     [](const CameraLine &line) -> Number { return line.status.loss; }},
    {"nvrec_camera_link_quality_ratio", "gauge", "Quality of the link from jitter and loss, 0 to 1.",
     [](const CameraLine &line) { return known(line.status.link_quality / 100.0); }},
    {"nvrec_camera_reconnects_total", "counter", "Times that the camera's line was opened again.",
     [](const CameraLine &line) -> Number { return number(line.status.reconnects); }},
    {"nvrec_camera_clock_jumps_total", "counter", "Times that the camera's clock was set.",
     [](const CameraLine &line) -> Number { return number(line.status.clock_jumps); }},
    {"nvrec_camera_frames_sent_total", "counter", "Frames that the library took.",
     [](const CameraLine &line) -> Number { return number(line.sent); }},
    {"nvrec_camera_frames_refused_total", "counter", "Frames that the library refused.",
     [](const CameraLine &line) -> Number { return number(line.status.refused); }},
    {"nvrec_decoder_frames_decoded_total", "counter", "Good pictures that the decoder gave.",
     [](const CameraLine &line) { return decoder_count(line, &host::DecoderCounters::decoded); }},
    {"nvrec_decoder_frames_shown_total", "counter", "Pictures that were on the screen.",
     [](const CameraLine &line) { return decoder_count(line, &host::DecoderCounters::shown); }},
    {"nvrec_decoder_frames_dropped_total", "counter", "Pictures that were never on the screen.",
     [](const CameraLine &line) { return decoder_count(line, &host::DecoderCounters::dropped); }},
    {"nvrec_decoder_frames_damaged_total", "counter", "Pictures that the decoder withheld.",
     [](const CameraLine &line) { return decoder_count(line, &host::DecoderCounters::damaged); }},
    {"nvrec_decoder_frames_discarded_total", "counter", "Frames that resets of the decoder threw away.",
     [](const CameraLine &line) -> Number {
         if (!line.decoder || !line.backlog) return std::nullopt;
         return number(line.decoder->discarded(*line.backlog));
     }},
    {"nvrec_decoder_resets_total", "counter", "Times that the decoder was reset.",
     [](const CameraLine &line) { return decoder_count(line, &host::DecoderCounters::resets); }},
    {"nvrec_decoder_backlog_frames", "gauge", "Frames that wait for the decoder.",
     [](const CameraLine &line) -> Number {
         if (!line.backlog) return std::nullopt;
         return number(line.backlog->frames);
     }},
    {"nvrec_decoder_backlog_bytes", "gauge", "Bytes that wait for the decoder.",
     [](const CameraLine &line) -> Number {
         if (!line.backlog) return std::nullopt;
         return number(line.backlog->bytes);
     }},
};

struct RecordingMetric {
    const char *name;
    const char *type;
    const char *help;
    double (*value)(const RecordingStatus &);
};

constexpr RecordingMetric kRecordingMetrics[] = {
    {"nvrec_recording_running", "gauge", "1 while frames go into a file.",
     [](const RecordingStatus &one) { return one.state == RecordingState::kRuns ? 1.0 : 0.0; }},
    {"nvrec_recording_failing", "gauge", "1 while frames are to be recorded and the disk takes none.",
     [](const RecordingStatus &one) { return one.state == RecordingState::kFailing ? 1.0 : 0.0; }},
    {"nvrec_recording_lag_seconds", "gauge", "Age of the oldest bytes that wait for the disk.",
     [](const RecordingStatus &one) { return one.lag_s; }},
    {"nvrec_recording_frames_written_total", "counter", "Frames that are in a file.",
     [](const RecordingStatus &one) { return number(one.written); }},
    {"nvrec_recording_frames_lost_total", "counter", "Frames that were overwritten before they were read.",
     [](const RecordingStatus &one) { return number(one.lost); }},
    {"nvrec_recording_frames_refused_total", "counter", "Frames that were too large to be kept.",
     [](const RecordingStatus &one) { return number(one.refused); }},
    {"nvrec_recording_frames_skipped_total", "counter", "Frames that were read, and are in no file.",
     [](const RecordingStatus &one) { return number(one.skipped); }},
    {"nvrec_recording_pool_laps_total", "counter", "Times that reading went on behind lost frames.",
     [](const RecordingStatus &one) { return number(one.pool_laps); }},
    {"nvrec_recording_written_bytes_total", "counter", "Bytes in files.",
     [](const RecordingStatus &one) { return number(one.bytes); }},
};

std::string label_text(const std::string &value)
{
    std::string quoted;
    for (const char letter : value) {
        if (letter == '\\' || letter == '"') quoted += '\\';
        if (letter == '\n') {
            quoted += "\\n";
        } else {
            quoted += letter;
        }
    }
    return quoted;
}

std::string shown(double value)
{
    char digits[40];
    const bool whole = value == std::floor(value) && std::abs(value) < 1e15;
    std::snprintf(digits, sizeof digits, whole ? "%.0f" : "%.6f", value);
    return digits;
}

class Page
{
public:
    void begin(const char *name, const char *type, const char *help)
    {
        name_ = name;
        text_ += std::string("# HELP ") + name + " " + help + "\n# TYPE " + name + " " + type + "\n";
    }

    /** @param labels  `a="b",c="d"`, or nothing */
    void add(const std::string &labels, double value)
    {
        text_ += name_ + (labels.empty() ? "" : "{" + labels + "}") + " " + shown(value) + "\n";
    }

    void single(const char *name, const char *type, const char *help, double value)
    {
        begin(name, type, help);
        add("", value);
    }

    const std::string &text() const { return text_; }

private:
    std::string name_;
    std::string text_;
};

std::string labels_of(const CameraLine &line)
{
    return "camera=\"" + label_text(line.name) + "\",channel=\"" + std::to_string(line.channel) + "\"";
}

void add_cameras(Page *page, const RecorderStatus &status)
{
    page->begin("nvrec_camera_state", "gauge", "1 for the state in which the camera is.");
    for (const CameraLine &line : status.cameras) {
        for (const CameraState state : {CameraState::kConnecting, CameraState::kLive, CameraState::kSilent,
                                        CameraState::kRefused, CameraState::kEnded})
            page->add(labels_of(line) + ",state=\"" + camera_state_name(state) + "\"",
                      line.status.state == state ? 1 : 0);
    }
    for (const CameraMetric &metric : kCameraMetrics) {
        page->begin(metric.name, metric.type, metric.help);
        for (const CameraLine &line : status.cameras) {
            const Number value = metric.value(line);
            if (value) page->add(labels_of(line), *value);
        }
    }
    for (const RecordingMetric &metric : kRecordingMetrics) {
        page->begin(metric.name, metric.type, metric.help);
        for (const CameraLine &line : status.cameras) {
            for (const RecordingStatus &one : line.recordings)
                page->add(labels_of(line) + ",stream=\"" + label_text(one.stream) + "\"", metric.value(one));
        }
    }
}

/*
 * A metric's value is a number, so a text is given as a label. The row is there only while there is a text.
 */
void add_errors(Page *page, const RecorderStatus &status)
{
    page->begin("nvrec_camera_last_error", "gauge", "What went wrong last with the camera, as a label.");
    for (const CameraLine &line : status.cameras) {
        if (!line.status.last_error.empty())
            page->add(labels_of(line) + ",error=\"" + label_text(line.status.last_error) + "\"", 1);
    }
    page->begin("nvrec_recording_last_error", "gauge",
                "What went wrong last with the recording, as a label.");
    for (const CameraLine &line : status.cameras) {
        for (const RecordingStatus &one : line.recordings) {
            if (one.last_error.empty()) continue;
            page->add(labels_of(line) + ",stream=\"" + label_text(one.stream) + "\",error=\"" +
                          label_text(one.last_error) + "\"",
                      1);
        }
    }
}

void add_retention(Page *page, const ArchiveStatus &archive)
{
    page->single("nvrec_retention_up", "gauge", "1 while retention can do what it is told.",
                 archive.trouble.empty() ? 1 : 0);
    if (archive.limit_bytes > 0)
        page->single("nvrec_retention_limit_bytes", "gauge", "What all recordings may take.",
                     static_cast<double>(archive.limit_bytes));
    if (archive.limit_age_s > 0)
        page->single("nvrec_retention_limit_seconds", "gauge", "How old recordings may get.",
                     static_cast<double>(archive.limit_age_s));
}

void add_disk(Page *page, const RecorderStatus &status)
{
    if (status.disk) {
        page->single("nvrec_disk_up", "gauge", "1 while the disk takes what is recorded.",
                     status.disk->state == DiskState::kGood ? 1 : 0);
        page->single("nvrec_disk_queue_bytes", "gauge", "Bytes that wait for the disk.",
                     number(status.disk->queued_bytes));
    }
    if (!status.archive) return;
    if (status.archive->free_bytes >= 0)
        page->single("nvrec_disk_free_bytes", "gauge", "Bytes that the disk has left.",
                     static_cast<double>(status.archive->free_bytes));
    if (status.disk_left_s)
        page->single("nvrec_disk_left_seconds", "gauge", "Time until the disk is full at the present rate.",
                     *status.disk_left_s);
    page->single("nvrec_archive_bytes", "gauge", "Bytes of all recordings.",
                 static_cast<double>(status.archive->total_bytes));
    if (status.archive->oldest_us > 0)
        page->single("nvrec_archive_oldest_timestamp_seconds", "gauge",
                     "Time of day at which the oldest begins.",
                     static_cast<double>(status.archive->oldest_us) / kMicrosecondsInOne);
    page->single("nvrec_archive_deleted_files_total", "counter", "Recordings that made room for others.",
                 number(status.archive->deleted));
    add_retention(page, *status.archive);
}

} // namespace

std::string status_metrics(const RecorderStatus &status)
{
    Page page;
    page.begin("nvrec_build_info", "gauge", "What runs here.");
    page.add("version=\"" + label_text(status.version) + "\",library=\"" + label_text(status.library) + "\"",
             1);
    page.single("nvrec_uptime_seconds", "gauge", "Time since the recorder's screen stood.", status.up_s);
    add_cameras(&page, status);
    add_errors(&page, status);
    add_disk(&page, status);
    page.begin("nvrec_board_line_level", "gauge", "Level of an output line of the board, 1 = high.");
    for (const BoardRow &row : status.board) {
        if (row.device == "line" && (row.state == "high" || row.state == "low"))
            page.add("line=\"" + label_text(row.item) + "\"", row.state == "high" ? 1 : 0);
    }
    return page.text();
}

} // namespace nvrec
