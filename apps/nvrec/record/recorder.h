/*
 * recorder.h - records the cameras beside the wall: every picture and the sound into the library's
 * frame pools, and from there into files.
 *
 * A camera may have a second address for its network stream. That stream is fed by a thread of its
 * own, goes into the sub pool and has no decoder.
 *
 * Threads: main; on_unit() and on_audio() on the cameras' threads; a thread a network stream; a
 * thread a recording (see recording.h).
 */
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "nvrhal/limits.h"
#include "record/recording.h"
#include "wall/module.h"

namespace nvrec
{

/** The pools have room for so many cameras. */
constexpr int kMostRecorded = NVRHAL_STORED_CHANNELS;

struct RecorderOptions {
    RecordOptions record;
    std::map<int, std::string> network; /* channel -> address of its network stream */
    FeedOptions feed;                   /* as the wall's                            */
};

class Recorder final : public Module
{
public:
    explicit Recorder(RecorderOptions options);

    bool start(WallControl &wall) override;
    void on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts) override;
    void on_audio(int channel, const SoundBlock &block) override;
    bool busy() const override { return network_running_ > 0; }
    void stop() override;
    void report() override;
    std::string json() const override;

private:
    void make_directory();
    std::vector<RecordingReport> rows() const;
    std::unique_ptr<Recording> make_recording(int channel, PoolStream stream);
    void start_network(int channel, const std::string &address);

    const RecorderOptions options_;
    WallControl *wall_ = nullptr;
    bool directory_failed_ = false;
    std::vector<std::unique_ptr<Recording>> main_; /* by channel */
    struct NetworkStream {
        std::unique_ptr<Recording> recording;
        std::unique_ptr<Feeder> feeder;
    };
    std::vector<NetworkStream> network_;
    std::atomic<int> network_running_ = 0; /* feeders not at their end */
};

} // namespace nvrec
