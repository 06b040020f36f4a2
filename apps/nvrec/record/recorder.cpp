/* recorder.cpp - see recorder.h. */
#include "record/recorder.h"

#include <algorithm>
#include <utility>

#include "archive/time_of_day.h"
#include "console/exit_code.h"
#include "console/terminal.h"

namespace nvrec
{
namespace
{

constexpr auto kLookPeriod = std::chrono::milliseconds(500);

std::string megabytes(uint64_t bytes)
{
    return std::to_string((bytes + 500'000) / 1'000'000) + " MB";
}

} // namespace

Recorder::Recorder(RecorderOptions options) : options_(std::move(options)) {}
Recorder::~Recorder() = default;

bool Recorder::start(WallControl &wall)
{
    wall_ = &wall;
    start_writer();
    for (size_t channel = 0; channel < wall.cameras().size(); ++channel)
        main_.push_back(make_recording(static_cast<int>(channel), PoolStream::kMain));
    for (const auto &recording : main_)
        recording->start();
    for (const auto &[channel, address] : options_.network)
        start_network(channel, address);
    wall.set_recorder(this);
    wall.set_recording(true);
    return true;
}

void Recorder::start_writer()
{
    rate_.note(Clock::now(), 0);
    if (options_.index) {
        std::map<int, std::string> names;
        for (const auto &camera : wall_->cameras())
            names.insert_or_assign(camera->channel(), camera->source().name);
        index_ = std::make_unique<RecorderIndex>(
            options_.record.directory, std::move(names),
            [terminal = &wall_->terminal()](bool trouble, const std::string &line) {
                trouble ? terminal->error(line) : terminal->info(line);
            });
        index_->set_retention(options_.retention);
        hooks_ = index_->hooks(options_.recycle);
    } else {
        hooks_ = options_.hooks;
    }
    DiskWriterOptions options;
    options.directory = options_.record.directory;
    if (options_.files) options.files = options_.files;
    options.free_space = hooks_.free_space;
    options.events = hooks_.files;
    options.hold_directory = hooks_.hold_directory;
    options.on_news = [wall = wall_] { wall->wake(); };
    writer_ = std::make_unique<DiskWriter>(std::move(options));
    wall_->watch_thread(
        {"the thread that writes recordings", [this] { return writer_->heartbeat_deadline(); }});
}

std::unique_ptr<Recording> Recorder::make_recording(int channel, PoolStream stream)
{
    Terminal &terminal = wall_->terminal();
    RecordOptions options = options_.record;
    const auto plan = options_.plans.find(channel);
    if (plan != options_.plans.end()) options.plan = plan->second;
    options.camera = wall_->cameras()[static_cast<size_t>(channel)]->source().name;
    const std::string stream_name = stream == PoolStream::kMain ? "main" : "network";
    Recording::GapHandler on_gap;
    if (hooks_.gap)
        on_gap = [this, channel, stream_name](int64_t from_us, int64_t to_us, const std::string &why) {
            hooks_.gap(channel, stream_name, from_us, to_us, why);
        };
    auto recording = std::make_unique<Recording>(
        channel, stream, options, *writer_, [&terminal](const std::string &line) { terminal.error(line); },
        std::move(on_gap));
    wall_->watch_thread({"the recording of " + channel_label(channel, options.camera) + ", " + stream_name,
                         [watched = recording.get()] { return watched->heartbeat_deadline(); }});
    return recording;
}

void Recorder::start_network(int channel, const std::string &address)
{
    FeedOptions feed = options_.feed;
    feed.sound_channels = 0; /* it comes with the main stream */
    CameraSource source = wall_->cameras()[static_cast<size_t>(channel)]->source();
    source.address = address;
    source.sub_address.clear();
    NetworkStream stream;
    stream.channel = channel;
    stream.recording = make_recording(channel, PoolStream::kNetwork);
    stream.feeder = std::make_unique<Feeder>(channel, source, feed);
    FrameRoute &route = stream.recording->video();
    Feeder::Events events;
    events.trouble = [this, label = stream.feeder->label()](int, const std::string &line) {
        wall_->terminal().error(label + ", network stream: " + line);
    };
    events.sink = [this, &route, live = stream.feeder->input().live()](const AccessUnit &unit,
                                                                       const StreamFacts &facts) {
        const int32_t result = route.put(unit, facts, live ? unit.wall_us : 0);
        if (options_.feed.as_fast_as_can) route.wait_for_reader();
        return result;
    };
    events.ended = [this](int) {
        --network_running_;
        wall_->wake();
    };
    stream.recording->start();
    ++network_running_;
    stream.feeder->start(std::move(events));
    network_.push_back(std::move(stream));
}

void Recorder::on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts)
{
    if (static_cast<size_t>(channel) >= main_.size()) return;
    FrameRoute &route = main_[static_cast<size_t>(channel)]->video();
    /* A picture of a file counts as taken when it is fed, not when it was read. */
    const bool live = wall_->cameras()[static_cast<size_t>(channel)]->input().live();
    route.put(unit, facts, live ? unit.wall_us : 0);
    if (options_.feed.as_fast_as_can) route.wait_for_reader();
}

void Recorder::on_camera_changed(int channel)
{
    if (static_cast<size_t>(channel) < main_.size()) main_[static_cast<size_t>(channel)]->end_camera();
}

void Recorder::on_camera_replaced(int channel)
{
    set_name(channel, wall_->cameras()[static_cast<size_t>(channel)]->source().name);
}

void Recorder::on_audio(int channel, const SoundBlock &block)
{
    if (static_cast<size_t>(channel) >= main_.size()) return;
    Recording &recording = *main_[static_cast<size_t>(channel)];
    recording.put(block);
    if (options_.feed.as_fast_as_can) recording.wait_for_sound_reader();
}

void Recorder::on_sound_packet(int channel, const SoundPacket &packet)
{
    if (static_cast<size_t>(channel) >= main_.size()) return;
    Recording &recording = *main_[static_cast<size_t>(channel)];
    recording.put(packet);
    if (options_.feed.as_fast_as_can) recording.wait_for_sound_reader();
}

Clock::time_point Recorder::take_turn(Clock::time_point now)
{
    rate_.note(now, written_bytes());
    tell_lines();
    tell_disk();
    if (wall_->recording() != anything_runs()) wall_->set_recording(anything_runs());
    return now + kLookPeriod;
}

void Recorder::tell_lines()
{
    for (const std::string &line : writer_->take_lines())
        wall_->terminal().error(line);
}

/* Tell once that a disk hangs; the writer tells when it answers again. */
void Recorder::tell_disk()
{
    const DiskStatus disk = writer_->status();
    const bool hangs = disk.state == DiskState::kHangs;
    if (hangs && !disk_hung_)
        wall_->terminal().error(options_.record.directory + ": the disk does not answer; " +
                                megabytes(disk.queued_bytes) + " of " + megabytes(disk.queue_limit_bytes) +
                                " wait in memory");
    disk_hung_ = hangs;
    wall_->set_alarm(disk.state == DiskState::kGood ? "" : "Recording: " + disk.trouble);
}

bool Recorder::anything_runs() const
{
    for (size_t channel = 0; channel < main_.size(); ++channel) {
        if (runs(static_cast<int>(channel))) return true;
    }
    return false;
}

bool Recorder::on_key(Key key)
{
    if (key != Key::kRecord) return false;
    const bool runs_now = std::ranges::any_of(
        main_, [](const auto &recording) { return recording->status().state != RecordingState::kOff; });
    if (order_ != RecordOrder::kAsPlanned)
        set_order(RecordOrder::kAsPlanned);
    else
        set_order(runs_now ? RecordOrder::kStop : RecordOrder::kStart);
    return true;
}

void Recorder::set_order(RecordOrder order)
{
    order_ = order;
    for (const auto &recording : main_)
        recording->set_order(order);
    for (const NetworkStream &stream : network_)
        stream.recording->set_order(order);
    wall_->terminal().info(order == RecordOrder::kStop    ? "recording is stopped by the record key"
                           : order == RecordOrder::kStart ? "all cameras are recorded by the record key"
                                                          : "recording goes by its plan");
    wall_->wake();
}

void Recorder::set_plan(int channel, const RecordingPlan &plan)
{
    if (channel < 0 || static_cast<size_t>(channel) >= main_.size()) return;
    main_[static_cast<size_t>(channel)]->set_plan(plan);
    for (const NetworkStream &stream : network_) {
        if (stream.channel == channel) stream.recording->set_plan(plan);
    }
}

void Recorder::event(int channel, const std::string &kind, const std::string &text)
{
    if (channel < 0 || static_cast<size_t>(channel) >= main_.size()) return;
    prolong_event(channel);
    if (!hooks_.event) return;
    hooks_.event({channel, wall_now_us(), kind, text});
}

void Recorder::prolong_event(int channel)
{
    if (channel < 0 || static_cast<size_t>(channel) >= main_.size()) return;
    main_[static_cast<size_t>(channel)]->begin_event();
    for (const NetworkStream &stream : network_) {
        if (stream.channel == channel) stream.recording->begin_event();
    }
}

void Recorder::set_name(int channel, const std::string &name)
{
    if (index_) index_->set_name(channel, name);
    if (channel < 0 || static_cast<size_t>(channel) >= main_.size()) return;
    main_[static_cast<size_t>(channel)]->begin_anew(name);
    for (const NetworkStream &stream : network_) {
        if (stream.channel == channel) stream.recording->begin_anew(name);
    }
}

void Recorder::set_retention(const RetentionOptions &retention)
{
    if (index_) index_->set_retention(retention);
}

bool Recorder::runs(int channel) const
{
    if (channel < 0 || static_cast<size_t>(channel) >= main_.size()) return false;
    return main_[static_cast<size_t>(channel)]->runs() && writer_->status().state != DiskState::kHangs;
}

void Recorder::stop()
{
    for (const NetworkStream &stream : network_)
        stream.feeder->ask_to_stop();
    for (const NetworkStream &stream : network_)
        stream.feeder->join();
    for (const auto &recording : main_)
        recording->finish();
    for (const NetworkStream &stream : network_)
        stream.recording->finish();
    bool failed = !finish_writer();
    for (const auto &recording : main_) {
        recording->settle();
        failed |= recording->failed();
    }
    for (const NetworkStream &stream : network_) {
        stream.recording->settle();
        failed |= stream.recording->failed();
    }
    if (failed) wall_->end(kExitOutputFailed);
    for (const NetworkStream &stream : network_) {
        if (!stream.feeder->opened() || stream.feeder->broken()) wall_->end(kExitInputFailed);
    }
    wall_->set_alarm("");
    wall_->set_recording(false);
}

/* @return false = the directory failed, or the disk did not answer any more. */
bool Recorder::finish_writer()
{
    DiskWriter::Leftover left;
    const bool finished = writer_->finish(&left);
    tell_lines();
    if (finished) {
        if (index_) index_->stop(kLongestIndexEnd);
        return writer_->directory_trouble().empty();
    }
    std::string line = options_.record.directory + ": the disk does not answer; lost are " +
                       std::to_string(left.pictures) + " pictures, " + std::to_string(left.bytes) +
                       " bytes, of";
    for (const std::string &path : left.paths)
        line += " " + path;
    wall_->terminal().error(line);
    return false;
}

} // namespace nvrec
