/* recording.cpp - see recording.h. */
#include "record/recording.h"

#include <utility>

namespace nvrec
{
namespace
{

constexpr int64_t kRetry_us = 10'000'000;

} // namespace

Recording::Recording(int channel, PoolStream stream, const RecordOptions &options, ErrorHandler on_error)
    : channel_(channel), carries_sound_(stream == PoolStream::kMain), options_(options),
      on_error_(std::move(on_error)), video_(channel, stream, event_),
      sound_(channel, PoolStream::kSound, event_)
{
    report_.channel = channel;
    report_.stream = carries_sound_ ? "main" : "network";
}

Recording::~Recording()
{
    finish();
}

void Recording::start()
{
    /* A reader's first look fixes where it begins: now, while the pool is empty. */
    PoolFrame none;
    video_.take(&none);
    if (carries_sound_) sound_.take(&none);
    thread_ = std::thread([this] { run(); });
}

void Recording::finish()
{
    event_.close();
    if (thread_.joinable()) thread_.join();
}

void Recording::run()
{
    PoolFrame frame;
    bool more = true;
    while (more) {
        more = event_.wait();
        while (video_.take(&frame))
            write_picture(frame);
        write_sound(INT64_MAX);
    }
    video_.give_up();
    sound_.give_up();
    end_file();
}

void Recording::write_picture(const PoolFrame &frame)
{
    last_taken_at_us_ = frame.taken_at_us;
    if (frame.after_gap) waits_for_key_ = true;
    if (frame.key) {
        std::vector<uint8_t> sets = parameter_sets_of(frame.bytes, frame.facts.codec);
        if (!sets.empty()) parameter_sets_ = std::move(sets); /* not every key frame repeats them */
        const TrackFacts facts = {frame.facts, parameter_sets_};
        waits_for_key_ = false;
        if (needs_file(frame, facts)) begin_file(frame, facts);
    }
    if (waits_for_key_ || !file_.is_open()) {
        ++report_.skipped;
        return;
    }
    if (!file_.write_video(frame.bytes, frame.pts_us, frame.dts_us, frame.key)) {
        ++report_.skipped;
        fail(file_.error());
        return;
    }
    ++report_.written;
}

bool Recording::needs_file(const PoolFrame &frame, const TrackFacts &facts) const
{
    if (!file_.is_open()) return frame.taken_at_us >= try_again_at_us_;
    return segment_slot(frame.taken_at_us, options_.segment_s) != slot_ || !(facts == file_.facts());
}

void Recording::begin_file(const PoolFrame &frame, const TrackFacts &facts)
{
    write_sound(frame.dts_us); /* what belongs to the file before it */
    end_file();
    if (facts.parameter_sets.empty()) return; /* nobody could play it */
    const std::string path =
        free_segment_path(options_.directory, segment_name(channel_, report_.stream, frame.taken_at_us),
                          file_ending(options_.container));
    if (!file_.open(path, options_.container, facts, frame.dts_us)) {
        fail(file_.error());
        return;
    }
    slot_ = segment_slot(frame.taken_at_us, options_.segment_s);
    report_.files.push_back(path);
}

void Recording::end_file()
{
    if (!file_.is_open()) return;
    if (!file_.close()) fail(file_.error());
    report_.bytes += file_.bytes();
}

/* The file at hand cannot be written. Said once a reason, not once a try. */
void Recording::fail(const std::string &reason)
{
    const std::string line = file_.path() + ": " + reason;
    if (report_.trouble.empty() || !report_.trouble.ends_with(reason)) on_error_(line);
    report_.trouble = line;
    try_again_at_us_ = last_taken_at_us_ + kRetry_us;
    end_file();
}

/* Write the sound that is there, as far as it lies before a time; the rest waits for the next file. */
void Recording::write_sound(int64_t until_us)
{
    if (!carries_sound_) return;
    PoolFrame block;
    while (sound_.take(&block))
        early_sound_.push_back(std::move(block));
    while (!early_sound_.empty() && early_sound_.front().pts_us < until_us) {
        write_block(early_sound_.front());
        early_sound_.pop_front();
    }
}

void Recording::write_block(const PoolFrame &block)
{
    if (!file_.is_open() || !file_.facts().stream.sound || block.pts_us < file_.origin_us()) {
        ++sound_skipped_;
        return;
    }
    if (file_.write_sound(block.bytes, block.pts_us)) {
        ++sound_written_;
        return;
    }
    ++sound_skipped_;
    fail(file_.error());
}

std::vector<RecordingReport> Recording::reports() const
{
    std::vector<RecordingReport> reports = {report_};
    reports.front().frames = video_.counters();
    const PoolCounters sound = sound_.counters();
    if (sound.stored + sound.refused == 0) return reports;
    RecordingReport row;
    row.channel = channel_;
    row.stream = "sound";
    row.frames = sound;
    row.written = sound_written_;
    row.skipped = sound_skipped_;
    reports.push_back(row);
    return reports;
}

} // namespace nvrec
