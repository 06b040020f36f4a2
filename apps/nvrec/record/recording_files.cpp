/* recording_files.cpp - see recording.h: frames into files, and files that fail. */
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "archive/time_of_day.h"
#include "record/recording.h"

namespace nvrec
{
namespace
{

constexpr auto kRetry = std::chrono::seconds(10);
constexpr auto kWellAgain = std::chrono::minutes(1);
constexpr size_t kMostEarlySound = 3000;

/* The reason that is entered with a gap. */
std::string reason_of(const OutputFile::Trouble &trouble)
{
    if (trouble.kind == OutputTrouble::kFull) return "the disk is full";
    if (trouble.kind == OutputTrouble::kGone) return "the file was deleted";
    return "the disk: " + trouble.reason;
}

/* The time of day up to which a file in trouble holds something; its beginning when it holds nothing. */
int64_t held_until_us(const OutputFile &output, const OutputFile::Trouble &trouble)
{
    return std::max(trouble.until_us, output.from_us);
}

} // namespace

void Recording::write_picture(const PoolFrame &frame)
{
    look_for_trouble();
    if (frame.after_gap) {
        waits_for_key_ = true;
        outages_.lost();
    }
    bool begins = false;
    if (frame.key) {
        std::vector<uint8_t> sets = parameter_sets_of(frame.bytes, frame.facts.codec);
        if (!sets.empty()) parameter_sets_ = std::move(sets); /* not every key frame repeats them */
        const TrackFacts facts = {frame.facts, parameter_sets_, sound_of(frame.facts)};
        waits_for_key_ = false;
        begins = needs_file(frame, facts);
        if (begins) begin_file(frame, facts);
    }
    if (waits_for_key_ || !file_.is_open()) {
        ++passed_over_;
        return;
    }
    write_sound(frame.dts_us);
    if (!file_.is_open()) return;
    if (!file_.write_video(frame.bytes, frame.pts_us, frame.dts_us, frame.key)) {
        fail_container();
        return;
    }
    last_place_us_ = output_->from_us + frame.dts_us - file_.origin_us();
    if (const auto gap = outages_.note(frame, last_place_us_, begins)) tell_gap(*gap, !begins);
    written_at_ = Clock::now().time_since_epoch().count();
    pass_output();
}

/* Between two files, times that the plan did not want are no gap. */
void Recording::tell_gap(const Outages::Gap &gap, bool inside)
{
    if (!on_gap_) return;
    const RecordingPlan now = plan();
    if (inside || order_ == RecordOrder::kStart) {
        on_gap_(gap.from_us, gap.to_us, gap.why);
    } else if (now.mode == RecordingMode::kEvent) {
        if (event_span_.had_begun(gap.since_us)) on_gap_(gap.from_us, gap.to_us, gap.why);
    } else {
        for (const auto &[from_us, to_us] : planned_within(now, gap.from_us, gap.to_us))
            if (to_us - from_us > kGap_us) on_gap_(from_us, to_us, gap.why);
    }
}

std::shared_ptr<const SoundFormat> Recording::sound_of(const StreamFacts &facts) const
{
    if (!carries_sound_) return nullptr;
    if (sent_sound_) return sent_sound_;
    return facts.sound ? pool_sound_format() : nullptr;
}

bool Recording::needs_file(const PoolFrame &frame, const TrackFacts &facts) const
{
    if (!file_.is_open()) return Clock::now() >= try_again_at_;
    return anew_ || segment_of(frame.taken_at_us, options_.segment_s) != segment_ ||
           !(facts == file_.facts()) || std::abs(wall_ahead_us() - clock_offset_us_) > kClockJump_us;
}

/* The disk writer chooses another one where it is taken. */
std::string Recording::intended_path(const OutputFile &output) const
{
    return options_.directory + "/" + output.name + output.ending;
}

void Recording::begin_file(const PoolFrame &frame, const TrackFacts &facts)
{
    write_sound(frame.dts_us); /* what belongs to the file before it */
    end_file();
    if (anew_.exchange(false)) outages_.forget();
    if (facts.parameter_sets.empty()) return; /* nobody could play it */
    auto output = std::make_shared<OutputFile>();
    output->channel = channel_;
    output->stream = stream_;
    output->name = segment_name(channel_, stream_, frame.taken_at_us);
    output->ending = file_ending(options_.container);
    output->from_us = frame.taken_at_us;
    output->tally = tally_;
    output->given_up = event_;
    if (!file_.open(options_.container, facts, frame.dts_us, {camera(), frame.taken_at_us})) {
        fail({OutputTrouble::kRefused, intended_path(*output), file_.error(), 0});
        return;
    }
    segment_ = segment_of(frame.taken_at_us, options_.segment_s);
    last_place_us_ = frame.taken_at_us;
    clock_offset_us_ = wall_ahead_us();
    output_ = output;
    pass_output(); /* a directory that takes no file is known at once */
    const std::scoped_lock guard(lock_);
    shown_output_ = output_;
}

/* Give the disk writer what libavformat has made of the file so far. */
void Recording::pass_output()
{
    FileChunk chunk = file_.take_output();
    if (chunk.empty()) return;
    const int64_t until_us = output_->from_us + (chunk.until_us - file_.origin_us());
    writer_.append(output_, std::move(chunk), until_us);
}

void Recording::end_file()
{
    if (!output_) return;
    if (file_.is_open()) {
        const bool ended = file_.close();
        pass_output();
        if (!ended) fail_container();
    }
    if (!output_) return;
    writer_.end(output_);
    ended_.push_back({std::move(output_), last_place_us_});
    output_.reset();
}

/* See whether the disk writer has given up the open file, or an ended file that it had not closed yet. */
void Recording::look_for_trouble()
{
    if (output_) {
        const OutputFile::Trouble trouble = output_->trouble();
        if (trouble.kind != OutputTrouble::kNone) fail(trouble);
    }
    std::erase_if(ended_, [this](const Ended &ended) {
        const bool closed = ended.output->closed; /* read first: once it is set, the trouble is final */
        const OutputFile::Trouble trouble = ended.output->trouble();
        if (trouble.kind == OutputTrouble::kNone) return closed;
        note_trouble(trouble.path, trouble.reason);
        const int64_t from_us = held_until_us(*ended.output, trouble);
        if (on_gap_ && ended.until_us - from_us > kGap_us)
            on_gap_(from_us, ended.until_us, reason_of(trouble));
        return true;
    });
}

void Recording::settle()
{
    look_for_trouble();
}

/* A reason is reported once, not at each try, until the disk takes recordings again. */
void Recording::note_trouble(const std::string &path, const std::string &reason)
{
    const std::string line = path + ": " + reason;
    bool is_new = false;
    {
        const std::scoped_lock guard(lock_);
        const uint64_t recoveries = writer_.recoveries(); /* said as well: what comes then is new */
        is_new = said_reason_ != reason || recoveries_said_ != recoveries;
        said_reason_ = reason;
        recoveries_said_ = recoveries;
        trouble_ = line;
        failed_ = true;
    }
    failing_ = true;
    trouble_at_ = Clock::now();
    written_at_trouble_ = tally_->pictures;
    if (is_new) on_error_(label() + ": not recorded: " + line);
}

/* Give up the open file, which cannot be written. */
void Recording::fail(const OutputFile::Trouble &trouble)
{
    try_again_at_ = Clock::now() + kRetry; /* set before on_error_ is called, which may ask for it */
    note_trouble(trouble.path, trouble.reason);
    file_.discard();
    if (output_) {
        writer_.end(output_);
        outages_.fell_back(held_until_us(*output_, trouble), reason_of(trouble));
    }
    output_.reset();
}

/* libavformat failed; what it has made so far is written. */
void Recording::fail_container()
{
    fail({OutputTrouble::kRefused, intended_path(*output_), file_.error(), last_place_us_});
}

void Recording::take_sound()
{
    if (!carries_sound_) return;
    if (!sends_recordable_) sent_sound_.reset(); /* it was another one before */
    PoolFrame block;
    while (sound_pool_ && sound_pool_->take(&block)) {
        ++alaw_taken_;
        if (!sent_sound_) early_sound_.push_back(std::move(block));
    }
    while (sound_queue_.take(&block)) {
        if (block.sound) {
            ++sent_taken_;
            if (!sent_sound_) early_sound_.clear(); /* A-law of the same */
            if (!sent_sound_ || !(*sent_sound_ == *block.sound)) sent_sound_ = block.sound;
        }
        if (block.sound || !sent_sound_) early_sound_.push_back(std::move(block));
    }
    while (early_sound_.size() > kMostEarlySound)
        early_sound_.pop_front();
}

/* Write the waiting sound that lies before a time; the rest waits for the next file. */
void Recording::write_sound(int64_t until_us)
{
    while (!early_sound_.empty() && early_sound_.front().pts_us < until_us) {
        write_block(early_sound_.front());
        early_sound_.pop_front();
    }
}

bool Recording::write_block(const PoolFrame &block)
{
    if (!file_.is_open() || !file_.facts().sound || block.pts_us < file_.origin_us()) return false;
    const SoundFormat &wanted = block.sound ? *block.sound : *pool_sound_format();
    if (!(wanted == *file_.facts().sound)) return false; /* the next file has a place for it */
    if (!file_.write_sound(block.bytes, block.pts_us, block.duration_us)) {
        fail_container();
        return false;
    }
    pass_output();
    return true;
}

/* A reason that comes back much later is reported again. */
void Recording::see_whether_well()
{
    if (failing_ && tally_->pictures > written_at_trouble_) failing_ = false;
    if (failing_ || Clock::now() - trouble_at_ < kWellAgain) return;
    const std::scoped_lock guard(lock_);
    said_reason_.clear();
}

void Recording::note_state()
{
    see_whether_well();
    if (output_)
        state_ = RecordingState::kRuns;
    else if (!is_wanted(wall_now_us()))
        state_ = RecordingState::kOff;
    else
        state_ =
            Clock::now() < try_again_at_ || failing_ ? RecordingState::kFailing : RecordingState::kWaiting;
}

} // namespace nvrec
