/* recorder_report.cpp - see recorder.h: what it tells of its recordings and of the disk, while it runs and at
 * the end.
 */
#include <utility>

#include "console/terminal.h"
#include "record/recorder.h"

namespace nvrec
{
namespace
{

constexpr double kSecondsOfAnHour = 3600;

} // namespace

std::vector<RecordingStatus> Recorder::recordings() const
{
    const bool disk_answers = writer_->status().state != DiskState::kHangs;
    std::vector<RecordingStatus> all;
    for (const auto &recording : main_) {
        all.push_back(recording->status());
        for (const NetworkStream &stream : network_) {
            if (stream.channel == all.back().channel) all.push_back(stream.recording->status());
        }
    }
    for (RecordingStatus &status : all) {
        const bool writes = status.state == RecordingState::kRuns ||
                            (status.state == RecordingState::kWaiting && !status.file.empty());
        if (writes && !disk_answers) status.state = RecordingState::kFailing;
    }
    return all;
}

DiskStatus Recorder::disk() const
{
    if (!writer_) return {};
    DiskStatus disk = writer_->status();
    if (!index_) return disk;
    const RetentionState retention = index_->retention_state();
    disk.recorded_bytes = retention.total_bytes;
    disk.oldest_us = retention.oldest_us;
    disk.free_bytes = retention.free_bytes;
    disk.recycled_files = retention.deleted;
    disk.retention_trouble = retention.trouble;
    const std::optional<double> rate = rate_.per_s(Clock::now(), written_bytes());
    if (rate.value_or(0) > 0 && disk.free_bytes >= 0)
        disk.left_h = static_cast<double>(disk.free_bytes) / *rate / kSecondsOfAnHour;
    return disk;
}

uint64_t Recorder::written_bytes() const
{
    uint64_t written = 0;
    for (const auto &recording : main_)
        written += recording->bytes_in_all();
    for (const NetworkStream &stream : network_)
        written += stream.recording->bytes_in_all();
    return written;
}

std::vector<RecordingReport> Recorder::rows() const
{
    std::vector<RecordingReport> rows;
    for (size_t channel = 0; channel < main_.size(); ++channel) {
        if (!wall_->cameras()[channel]->has_camera()) continue;
        for (RecordingReport &row : main_[channel]->reports())
            rows.push_back(std::move(row));
    }
    for (const NetworkStream &stream : network_)
        rows.push_back(stream.recording->reports().front());
    return rows;
}

void Recorder::report()
{
    for (const std::string &line : table_of(rows()))
        wall_->terminal().print(line);
}

std::string Recorder::json() const
{
    return json_of(rows());
}

} // namespace nvrec
