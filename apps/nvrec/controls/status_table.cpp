/* status_table.cpp - see status.h: for people. */
#include <algorithm>
#include <array>
#include <ctime>

#include "console/text.h"
#include "controls/status.h"
#include "controls/status_names.h"

namespace nvrec
{
namespace
{

constexpr int64_t kMicroseconds = 1'000'000;
constexpr double kHourSeconds = 3600;

using Row = std::vector<std::string>;

/* The width of a UTF-8 text on a terminal, where Chinese letters are two columns wide. */
size_t width_of(const std::string &text)
{
    constexpr unsigned char kContinues = 0x80, kBegins = 0xC0, kWide = 0xE3; /* from U+3000 on */
    size_t width = 0;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte < kContinues || byte >= kBegins) width += byte >= kWide ? 2 : 1;
    }
    return width;
}

/* Make columns as wide as their widest text; the last one is not padded. */
std::string columns(const std::vector<Row> &rows)
{
    std::vector<size_t> widths;
    for (const Row &row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], width_of(row[i]));
    }
    std::string lines;
    for (const Row &row : rows) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string(widths[i] - width_of(row[i]) + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        lines += line + "\n";
    }
    return lines;
}

std::string local_time(int64_t wall_us)
{
    const std::time_t seconds = wall_us / kMicroseconds;
    std::tm local = {};
    localtime_r(&seconds, &local);
    std::array<char, 32> shown = {};
    std::strftime(shown.data(), shown.size(), "%Y-%m-%d %H:%M:%S", &local);
    return shown.data();
}

/* A value that was measured, or a dash. */
std::string measured(double value, const char *format)
{
    if (value <= 0) return "-";
    std::array<char, 48> shown = {};
    std::snprintf(shown.data(), shown.size(), format, value);
    return shown.data();
}

std::string bytes_shown(double bytes)
{
    if (bytes < 1e6) return text("%.0f kB", bytes / 1e3);
    return bytes < 1e9 ? text("%.1f MB", bytes / 1e6) : text("%.1f GB", bytes / 1e9);
}

/* Which stream is shown, and the state of the main stream beside it unless that is live. */
std::string streams_of(const CameraStatus &camera)
{
    std::string shown = camera.sub_stream ? "sub" : "main";
    if (camera.main_state.value_or(CameraState::kLive) == CameraState::kLive) return shown;
    return shown + ", main " + camera_state_name(*camera.main_state);
}

std::string cameras_table(const RecorderStatus &status)
{
    std::vector<Row> rows = {{"ch", "camera", "state", "since", "stream", "rate", "Mbit/s", "key every",
                              "jitter", "loss", "reconnects", "last error"}};
    for (const CameraLine &line : status.cameras) {
        const CameraStatus &camera = line.status;
        rows.push_back({text("%d", line.channel), line.name, camera_state_name(camera.state),
                        local_time(camera.since_wall_us), streams_of(camera),
                        measured(camera.frame_rate, "%.1f"), measured(camera.bit_rate_bps / 1e6, "%.2f"),
                        measured(camera.key_distance_s, "%.1f s"), measured(camera.jitter_ms, "%.0f ms"),
                        text("%.1f %%", camera.loss * 100),
                        text("%llu", static_cast<Count>(camera.reconnects)), camera.last_error});
    }
    return columns(rows);
}

std::string decoders_table(const RecorderStatus &status)
{
    std::vector<Row> rows = {{"ch", "sent", "refused", "decoded", "shown", "dropped", "damaged", "resets",
                              "discarded", "backlog"}};
    for (const CameraLine &line : status.cameras) {
        Row row = {text("%d", line.channel), text("%llu", static_cast<Count>(line.sent)),
                   text("%llu", static_cast<Count>(line.status.refused))};
        if (line.decoder) {
            for (const uint64_t count : {line.decoder->decoded, line.decoder->shown, line.decoder->dropped,
                                         line.decoder->damaged, line.decoder->resets})
                row.push_back(text("%llu", static_cast<Count>(count)));
        } else {
            row.insert(row.end(), 5, "-");
        }
        const bool told = line.decoder && line.backlog;
        row.push_back(told ? text("%llu", static_cast<Count>(line.decoder->discarded(*line.backlog))) : "-");
        row.push_back(line.backlog ? text("%llu frames, %s", static_cast<Count>(line.backlog->frames),
                                          bytes_shown(static_cast<double>(line.backlog->bytes)).c_str())
                                   : "-");
        rows.push_back(std::move(row));
    }
    return columns(rows);
}

std::string recordings_table(const RecorderStatus &status)
{
    std::vector<Row> rows = {{"ch", "stream", "records", "written", "lost", "refused", "skipped", "pool laps",
                              "lag", "bytes", "last error"}};
    for (const CameraLine &line : status.cameras) {
        for (const RecordingStatus &one : line.recordings) {
            Row row = {text("%d", one.channel), one.stream,
                       std::string(recording_state_name(one.state)) + (one.by_event ? ", event" : "")};
            for (const uint64_t count : {one.written, one.lost, one.refused, one.skipped, one.pool_laps})
                row.push_back(text("%llu", static_cast<Count>(count)));
            row.insert(row.end(), {text("%.1f s", one.lag_s), bytes_shown(static_cast<double>(one.bytes)),
                                   one.last_error});
            rows.push_back(std::move(row));
        }
    }
    return rows.size() == 1 ? "nothing is recorded\n" : columns(rows);
}

std::string disk_lines(const RecorderStatus &status)
{
    std::vector<Row> rows;
    if (status.disk) {
        std::string state = disk_state_name(status.disk->state);
        if (status.disk->state != DiskState::kGood) state += text(" for %.0f s", status.disk->since_s);
        if (!status.disk->trouble.empty()) state += ": " + status.disk->trouble;
        rows.push_back({"disk", "state", state});
        rows.push_back({"disk", "queue",
                        bytes_shown(static_cast<double>(status.disk->queued_bytes)) + " of " +
                            bytes_shown(static_cast<double>(status.disk->queue_limit_bytes))});
    }
    if (status.archive) {
        const ArchiveStatus &archive = *status.archive;
        if (archive.free_bytes >= 0) {
            std::string left = bytes_shown(static_cast<double>(archive.free_bytes));
            if (status.disk_left_s)
                left += text(", %.1f hours at this rate", *status.disk_left_s / kHourSeconds);
            rows.push_back({"disk", "left", left});
        }
        rows.push_back({"archive", "size", bytes_shown(static_cast<double>(archive.total_bytes))});
        rows.push_back({"archive", "oldest", archive.oldest_us > 0 ? local_time(archive.oldest_us) : "-"});
        std::string kept =
            archive.limit_bytes > 0 ? bytes_shown(static_cast<double>(archive.limit_bytes)) : "";
        if (archive.limit_age_s > 0)
            kept += text("%s%.1f days", kept.empty() ? "" : ", ",
                         static_cast<double>(archive.limit_age_s) / (24 * kHourSeconds));
        rows.push_back({"archive", "keeps", kept.empty() ? "until the disk is full" : kept});
        rows.push_back({"archive", "deleted", text("%llu files", static_cast<Count>(archive.deleted))});
        if (!archive.trouble.empty()) rows.push_back({"archive", "trouble", archive.trouble});
    }
    return columns(rows);
}

} // namespace

std::string status_table(const RecorderStatus &status)
{
    std::string lines = text("nvrec %s on libnvrhal %s, up %.0f s, ", status.version.c_str(),
                             status.library.c_str(), status.up_s) +
                        local_time(status.at_us) + "\n\n";
    lines += cameras_table(status) + "\n" + decoders_table(status) + "\n" + recordings_table(status);
    const std::string disk = disk_lines(status);
    if (!disk.empty()) lines += "\n" + disk;
    return lines + "\n" + board_text(status.board);
}

} // namespace nvrec
