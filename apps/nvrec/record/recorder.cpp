/* recorder.cpp - see recorder.h. */
#include "record/recorder.h"

#include <filesystem>
#include <utility>

#include "wall/exit_code.h"
#include "wall/terminal.h"

namespace nvrec
{

Recorder::Recorder(RecorderOptions options) : options_(std::move(options)) {}

bool Recorder::start(WallControl &wall)
{
    wall_ = &wall;
    make_directory();
    for (size_t channel = 0; channel < wall.cameras().size(); ++channel)
        main_.push_back(make_recording(static_cast<int>(channel), PoolStream::kMain));
    for (const auto &recording : main_)
        recording->start();
    for (const auto &[channel, address] : options_.network)
        start_network(channel, address);
    wall.set_recording(true);
    return true;
}

/* Without one the files fail, and are tried again: it may only be late, as a disk can be. */
void Recorder::make_directory()
{
    std::error_code error;
    std::filesystem::create_directories(options_.record.directory, error);
    if (!error) return;
    directory_failed_ = true;
    wall_->terminal().error("nothing is recorded: " + options_.record.directory + ": " + error.message());
}

std::unique_ptr<Recording> Recorder::make_recording(int channel, PoolStream stream)
{
    Terminal &terminal = wall_->terminal();
    return std::make_unique<Recording>(
        channel, stream, options_.record, [&terminal, channel](const std::string &line) {
            terminal.error("channel " + std::to_string(channel) + ": not recorded: " + line);
        });
}

void Recorder::start_network(int channel, const std::string &address)
{
    FeedOptions feed = options_.feed;
    feed.sound_channels = 0; /* it comes with the main stream */
    NetworkStream stream;
    stream.recording = make_recording(channel, PoolStream::kNetwork);
    stream.feeder = std::make_unique<Feeder>(channel, address, feed);
    PoolReader &pool = stream.recording->video();
    Feeder::Events events;
    events.trouble = [this](int of_channel, const std::string &line) {
        wall_->terminal().error("channel " + std::to_string(of_channel) + ", network stream: " + line);
    };
    events.sink = [this, &pool](const AccessUnit &unit, const StreamFacts &facts) {
        const int32_t result = pool.put(unit, facts);
        if (options_.feed.as_fast_as_can) pool.wait_for_reader();
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
    PoolReader &pool = main_[static_cast<size_t>(channel)]->video();
    pool.put(unit, facts);
    if (options_.feed.as_fast_as_can) pool.wait_for_reader();
}

void Recorder::on_audio(int channel, const SoundBlock &block)
{
    if (static_cast<size_t>(channel) >= main_.size()) return;
    PoolReader &pool = main_[static_cast<size_t>(channel)]->sound();
    pool.put(block);
    if (options_.feed.as_fast_as_can) pool.wait_for_reader();
}

void Recorder::stop()
{
    for (const NetworkStream &stream : network_)
        stream.feeder->ask_to_stop();
    for (const NetworkStream &stream : network_)
        stream.feeder->join();
    bool failed = directory_failed_;
    for (const auto &recording : main_) {
        recording->finish();
        failed |= recording->failed();
    }
    for (const NetworkStream &stream : network_) {
        stream.recording->finish();
        failed |= stream.recording->failed();
    }
    if (failed) wall_->end(kExitOutputFailed);
    for (const NetworkStream &stream : network_) {
        if (!stream.feeder->opened() || stream.feeder->broken()) wall_->end(kExitInputFailed);
    }
    wall_->set_recording(false);
}

std::vector<RecordingReport> Recorder::rows() const
{
    std::vector<RecordingReport> rows;
    for (const auto &recording : main_)
        for (RecordingReport &row : recording->reports())
            rows.push_back(std::move(row));
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
