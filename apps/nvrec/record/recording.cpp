/* recording.cpp - see recording.h: the thread, and what is to be recorded. */
#include "record/recording.h"

#include <algorithm>
#include <utility>

#include "archive/time_of_day.h"
#include "camera/camera_status.h"

namespace nvrec
{
namespace
{

constexpr uint64_t kSoundQueue_bytes = 256u << 10; /* ten seconds of the best sound */
constexpr int64_t kSoundPatience_us = 1'000'000;   /* pictures wait so long to hear what sound comes */
constexpr uint64_t kHeard_blocks = 5;              /* of A-law alone: none comes as sent */
constexpr auto kWorkLimit = std::chrono::seconds(10);

int64_t microseconds(double seconds)
{
    return static_cast<int64_t>(seconds * 1e6);
}

} // namespace

Recording::Recording(int channel, PoolStream stream, const RecordOptions &options, DiskWriter &writer,
                     ErrorHandler on_error, GapHandler on_gap)
    : channel_(channel), carries_sound_(stream == PoolStream::kMain), options_(options), writer_(writer),
      on_error_(std::move(on_error)), on_gap_(std::move(on_gap)),
      stream_(carries_sound_ ? "main" : "network"), video_(channel, stream, *event_),
      sound_queue_(kSoundQueue_bytes, *event_), plan_(options.plan), camera_(options.camera)
{
    if (channel < NVRHAL_STORED_CHANNELS && carries_sound_)
        sound_pool_.emplace(channel, PoolStream::kSound, *event_);
}

Recording::~Recording()
{
    finish();
}

void Recording::start()
{
    /* A reader begins at the place of its first look, so look now, while the pool is empty. */
    PoolFrame none;
    video_.take(&none);
    if (sound_pool_) sound_pool_->take(&none);
    thread_ = std::thread([this] { run(); });
}

void Recording::finish()
{
    closing_ = true;
    event_->close();
    writer_.wake_waiting();
    if (thread_.joinable()) thread_.join();
}

void Recording::put(const SoundBlock &block)
{
    if (sound_pool_) {
        sound_pool_->put(block);
        return;
    }
    PoolFrame frame;
    frame.bytes.assign(block.samples.begin(), block.samples.end());
    frame.key = true;
    frame.pts_us = frame.dts_us = block.pts_us;
    sound_queue_.put(std::move(frame));
}

/* Sound that a file has no place for comes as A-law. */
void Recording::put(const SoundPacket &packet)
{
    if (!packet.codec || packet.bytes.empty()) return;
    if (packet.codec != codec_) { /* one object for all packets between two changes */
        codec_ = packet.codec;
        SoundFormat format = {codec_->av_id, codec_->rate_hz, codec_->channels, codec_->extradata};
        format = completed(std::move(format));
        as_sent_ = is_recordable(format) ? std::make_shared<const SoundFormat>(std::move(format)) : nullptr;
    }
    sends_recordable_ = as_sent_ != nullptr;
    if (!as_sent_) return;
    PoolFrame frame;
    frame.bytes = packet.bytes;
    frame.key = true; /* every packet of sound can be begun with */
    frame.pts_us = frame.dts_us = packet.pts_us;
    frame.duration_us = packet.duration_us;
    frame.sound = as_sent_;
    sound_queue_.put(std::move(frame));
}

void Recording::wait_for_sound_reader()
{
    if (sound_pool_) sound_pool_->wait_for_reader();
    sound_queue_.wait_for_reader();
}

void Recording::begin_event()
{
    event_span_.begin(plan().after_s);
    event_->set();
}

void Recording::set_order(RecordOrder order)
{
    order_ = order;
    event_->set();
}

void Recording::set_plan(const RecordingPlan &plan)
{
    {
        const std::scoped_lock guard(lock_);
        plan_ = plan;
    }
    event_->set();
}

void Recording::begin_anew(const std::string &camera)
{
    {
        const std::scoped_lock guard(lock_);
        camera_ = camera;
    }
    anew_ = camera_replaced_ = true;
    event_->set();
}

void Recording::end_camera()
{
    camera_ended_ = true;
    event_->set();
}

std::string Recording::camera() const
{
    const std::scoped_lock guard(lock_);
    return camera_;
}

RecordingPlan Recording::plan() const
{
    const std::scoped_lock guard(lock_);
    return plan_;
}

bool Recording::is_wanted(int64_t wall_us) const
{
    if (order_ != RecordOrder::kAsPlanned) return order_ == RecordOrder::kStart;
    const RecordingPlan now = plan();
    return now.mode == RecordingMode::kEvent ? event_span_.holds(wall_us) : is_planned(now, wall_us);
}

bool Recording::wants_held() const
{
    return !held_.empty() && is_wanted(held_.until_wall_us());
}

bool Recording::goes_by_events() const
{
    return order_ == RecordOrder::kAsPlanned && plan().mode == RecordingMode::kEvent;
}

int64_t Recording::held_before_us() const
{
    return goes_by_events() ? microseconds(plan().before_s) : 0;
}

void Recording::run()
{
    bool more = true;
    while (more) {
        heartbeat_deadline_ = INT64_MAX;
        more = event_->wait();
        heartbeat_deadline_ = (Clock::now() + kWorkLimit).time_since_epoch().count();
        take_frames();
    }
    waiting_for_sound_ = false;
    if (wants_held()) let_held_go();
    write_sound(INT64_MAX);
    video_.give_up();
    if (sound_pool_) sound_pool_->give_up();
    sound_queue_.give_up();
    end_file();
    heartbeat_deadline_ = INT64_MAX;
}

/*
 * The disk writer watches the disk, so this thread has no deadline while it waits for room.
 */
void Recording::wait_for_room()
{
    heartbeat_deadline_ = INT64_MAX;
    writer_.wait_for_room([this] { return closing_.load(); });
    heartbeat_deadline_ = (Clock::now() + kWorkLimit).time_since_epoch().count();
}

void Recording::take_frames()
{
    PoolFrame frame;
    for (;;) {
        wait_for_room();
        take_sound();
        if (!video_.take(&frame)) break;
        if (!camera_ended_ && camera_replaced_.exchange(false)) count_anew(); /* it is the first of another */
        handle(std::move(frame));
    }
    if (held_.empty()) write_sound(INT64_MAX);
    if (const uint64_t bytes = video_.take_too_large_bytes(); bytes > 0)
        on_error_(label() + ": the " + stream_ + " stream has a frame of " + std::to_string(bytes) +
                  " bytes, and the frame pool takes " + std::to_string(video_.pool_limit_bytes()) +
                  " at most: it is recorded beside the pool from there on");
    if (camera_ended_.exchange(false)) forget_camera();
    if (camera_replaced_.exchange(false)) count_anew();
    look_for_trouble();
    catch_up();
    note_state();
}

/* The next camera may send other sound, and begins with a key frame. */
void Recording::forget_camera()
{
    waiting_for_sound_ = sound_is_known_ = false;
    if (wants_held()) let_held_go();
    held_.clear();
    write_sound(INT64_MAX);
    end_file();
    outages_.forget();
    early_sound_.clear();
    sent_sound_ = nullptr;
    sent_taken_ = alaw_taken_ = 0;
    waits_for_key_ = anew_ = true;
}

/* What the disk writer still has of the camera before counts as that one's. */
void Recording::count_anew()
{
    const PoolCounters video = video_.counters(), sound = sound_counters();
    written_at_trouble_ = 0;
    passed_over_ = 0;
    const std::scoped_lock guard(lock_);
    tallies_before_.push_back(std::exchange(tally_, std::make_shared<OutputTally>()));
    video_before_ = video;
    sound_before_ = sound;
    trouble_.clear();
}

/* Take up what the record key or an event asked for while no picture came. */
void Recording::catch_up()
{
    const bool may_end = !goes_by_events() || is_silent(); /* there, a key frame ends it */
    if (may_end && !is_wanted(wall_now_us())) {
        end_file();
        outages_.forget();
    }
    if (!waiting_for_sound_ && wants_held()) let_held_go();
}

/* The file that pictures go into depends on the sound that comes with them. */
bool Recording::waits_for_sound(const PoolFrame &frame)
{
    if (!carries_sound_ || sound_is_known_ || !frame.facts.sound) return false;
    const bool heard = sent_taken_ > 0 || alaw_taken_ >= kHeard_blocks || held_.span_us() > kSoundPatience_us;
    sound_is_known_ = heard || closing_;
    return !sound_is_known_;
}

void Recording::handle(PoolFrame frame)
{
    const bool waits = waiting_for_sound_ = waits_for_sound(frame);
    const bool goes_on = output_ && !frame.key && goes_by_events();
    /* The picture goes where the pictures before it in its group went. */
    const int64_t wall_us =
        held_.empty() ? frame.taken_at_us : std::max(frame.taken_at_us, held_.until_wall_us());
    if (!waits && (goes_on || is_wanted(wall_us))) {
        let_held_go();
        write_picture(frame);
        return;
    }
    if (!waits) {
        end_file();
        outages_.forget();
    }
    if (!waits && !goes_by_events()) {
        held_.clear();
        early_sound_.clear();
        return;
    }
    const int64_t before_us = std::max(held_before_us(), waits ? 2 * kSoundPatience_us : 0);
    held_.add(std::move(frame), before_us);
    while (!early_sound_.empty() && !held_.empty() && early_sound_.front().pts_us < held_.from_us())
        early_sound_.pop_front();
}

void Recording::let_held_go()
{
    const bool all = goes_by_events();
    for (const PoolFrame &frame : held_.take()) {
        if (!all && !is_wanted(frame.taken_at_us)) continue;
        wait_for_room();
        write_picture(frame);
    }
}

bool Recording::is_silent() const
{
    return Clock::now() - Clock::time_point(Clock::duration(written_at_.load())) >= kSilentAfter;
}

/* A file stays open for a camera that has fallen silent; nothing goes into it. */
RecordingState Recording::state() const
{
    const RecordingState state = state_;
    return state == RecordingState::kRuns && is_silent() ? RecordingState::kWaiting : state;
}

Clock::time_point Recording::heartbeat_deadline() const
{
    return Clock::time_point(Clock::duration(heartbeat_deadline_.load()));
}

} // namespace nvrec
