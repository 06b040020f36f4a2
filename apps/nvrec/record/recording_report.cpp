/* recording_report.cpp - see recording.h: what a recording tells of itself, while it runs and at the end. */
#include <algorithm>

#include "record/recording.h"

namespace nvrec
{

RecordingStatus Recording::status() const
{
    const PoolCounters counted = video_.counters();
    RecordingStatus status;
    status.channel = channel_;
    status.stream = stream_;
    status.state = state();
    status.by_event = plan().mode == RecordingMode::kEvent && status.state == RecordingState::kRuns;
    status.beside_the_pool = video_.beside_the_pool();
    status.skipped = passed_over_;
    const std::scoped_lock guard(lock_);
    const PoolCounters frames = counted - video_before_;
    status.file = tally_->current();
    status.written = tally_->pictures;
    status.bytes = tally_->bytes;
    status.lost = frames.lost;
    status.refused = frames.refused;
    status.pool_laps = frames.resynchronised;
    status.last_error = trouble_;
    if (shown_output_) status.lag_s = writer_.lag_s(*shown_output_);
    return status;
}

uint64_t Recording::bytes_in_all() const
{
    const std::scoped_lock guard(lock_);
    uint64_t bytes = tally_->bytes;
    for (const auto &tally : tallies_before_)
        bytes += tally->bytes;
    return bytes;
}

PoolCounters Recording::sound_counters() const
{
    const PoolCounters sent = sound_queue_.counters();
    return sent.stored + sent.refused > 0 || !sound_pool_ ? sent : sound_pool_->counters();
}

std::vector<RecordingReport> Recording::reports() const
{
    RecordingReport pictures;
    pictures.channel = channel_;
    pictures.stream = stream_;
    const PoolCounters sound_counted = sound_counters();
    const std::scoped_lock guard(lock_);
    pictures.frames = video_.counters() - video_before_;
    pictures.written = tally_->pictures;
    pictures.skipped = pictures.frames.read - std::min<uint64_t>(pictures.frames.read, pictures.written);
    pictures.bytes = tally_->bytes;
    pictures.files = tally_->files();
    pictures.trouble = trouble_;
    std::vector<RecordingReport> reports = {pictures};
    const PoolCounters sound = sound_counted - sound_before_;
    if (sound.stored + sound.refused == 0) return reports;
    RecordingReport row;
    row.channel = channel_;
    row.stream = "sound";
    row.frames = sound;
    row.written = tally_->sounds;
    row.skipped = sound.read - std::min<uint64_t>(sound.read, row.written);
    reports.push_back(row);
    return reports;
}

bool Recording::failed() const
{
    const std::scoped_lock guard(lock_);
    return failed_;
}

} // namespace nvrec
