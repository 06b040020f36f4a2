/* status.cpp - see status.h: collects it. */
#include "controls/status.h"

#include <algorithm>
#include <charconv>

#include "controls/versions.h"
#include "wall/module.h"
#include "wall/report.h"

namespace nvrec
{
namespace
{

constexpr double kSecondsOfAnHour = 3600;

/* Take what the recorder knows of the disk and of the recordings on it. */
std::optional<ArchiveStatus> archive_of(const DiskStatus &disk, const ArchiveStatus &limits)
{
    if (disk.recorded_bytes < 0) return std::nullopt;
    ArchiveStatus archive = limits;
    archive.total_bytes = disk.recorded_bytes;
    archive.oldest_us = disk.oldest_us;
    archive.free_bytes = disk.free_bytes;
    archive.deleted = disk.recycled_files;
    archive.trouble = disk.retention_trouble;
    return archive;
}

} // namespace

std::string camera_name_of(WallControl &wall, int channel)
{
    const auto index = static_cast<size_t>(channel);
    if (index < wall.cameras().size() && !wall.cameras()[index]->source().name.empty())
        return wall.cameras()[index]->source().name;
    return "Camera " + std::to_string(channel + 1);
}

int camera_named(WallControl &wall, const std::string &name)
{
    for (const auto &camera : wall.cameras()) {
        if (camera->has_camera() && camera_name_of(wall, camera->channel()) == name) return camera->channel();
    }
    int channel = -1;
    const char *end = name.data() + name.size();
    const auto [rest, error] = std::from_chars(name.data(), end, channel);
    if (error != std::errc() || rest != end || channel < 0) return -1;
    const auto index = static_cast<size_t>(channel);
    return index < wall.cameras().size() && wall.cameras()[index]->has_camera() ? channel : -1;
}

RecorderStatus collect_status(WallControl &wall, const std::optional<ArchiveStatus> &limits,
                              Clock::time_point started)
{
    RecorderStatus status;
    status.version = nvrec_version();
    status.library = library_version();
    status.at_us =
        std::chrono::duration_cast<std::chrono::microseconds>(wall_time().time_since_epoch()).count();
    status.up_s = std::chrono::duration<double>(Clock::now() - started).count();
    for (const auto &camera : wall.cameras()) {
        if (!camera->has_camera()) continue;
        CameraLine line;
        line.channel = camera->channel();
        line.name = camera_name_of(wall, line.channel);
        line.address = camera->shown_address();
        line.status = camera->status();
        line.sent = camera->counters().sent;
        line.decoder = wall.reporter().decoder_of(line.channel);
        line.backlog = host::decoder_backlog(line.channel);
        status.cameras.push_back(std::move(line));
    }
    if (const RecordingView *recorder = wall.recorder()) {
        status.disk = recorder->disk();
        for (RecordingStatus &recording : recorder->recordings()) {
            const auto camera = std::ranges::find(status.cameras, recording.channel, &CameraLine::channel);
            if (camera != status.cameras.end()) camera->recordings.push_back(std::move(recording));
        }
    }
    if (status.disk) {
        status.archive = archive_of(*status.disk, limits.value_or(ArchiveStatus()));
        if (status.disk->left_h >= 0) status.disk_left_s = status.disk->left_h * kSecondsOfAnHour;
    }
    status.board = board_rows();
    return status;
}

} // namespace nvrec
