/*
 * recorder.h - records the cameras beside the wall: every picture and the sound go through the library's
 * frame pools, or beside them (frame_route.h), and from there through one disk writer into files.
 *
 * A camera may have a second address for its network stream. That stream is fed by a thread of its
 * own, goes into the sub pool and has no decoder.
 *
 * The record key stops all recording, and starts it again. When no plan wants anything recorded, the key
 * starts recording all cameras, and stops that again.
 *
 * When the disk does not answer, the recorder tells so within three seconds: by a message, by an alarm on the
 * screen, and by the record lamp, which stops blinking.
 *
 * Threads: main; on_unit(), on_audio() on the cameras' threads; a thread a network stream; a thread a
 * recording (see recording.h); one that writes (disk_writer.h). event() and RecordingView on any.
 */
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "nvrhal/limits.h"
#include "record/disk_writer.h"
#include "record/recent_rate.h"
#include "record/recorder_index.h"
#include "record/recording.h"
#include "wall/module.h"
#include "wall/recording_status.h"

namespace nvrec
{

constexpr int kMostRecorded = NVRHAL_MAX_CAMERAS;

struct RecorderOptions {
    RecordOptions record;
    std::map<int, std::string> network; /* channel -> address of its network stream */
    FeedOptions feed;                   /* as the wall's                            */
    std::map<int, RecordingPlan> plans; /* of channels with another than record.plan */
    std::shared_ptr<FileSystem> files;  /* null = the system's                      */

    /** Keep an index beside the recordings (archive/index.h), with the names of the wall's cameras. */
    bool index = true;
    RetentionOptions retention; /* zeros = no limit                                    */
    bool recycle = false;       /* the oldest recordings make room when the disk is full */
    RecorderHooks hooks;        /* besides the index; for tests                        */
};

class Recorder final : public Module, public RecordingView
{
public:
    explicit Recorder(RecorderOptions options);
    ~Recorder() override;

    bool start(WallControl &wall) override;
    void on_camera_changed(int channel) override;
    void on_camera_replaced(int channel) override;
    void on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts) override;
    void on_audio(int channel, const SoundBlock &block) override;
    void on_sound_packet(int channel, const SoundPacket &packet) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    bool on_key(Key key) override;
    bool busy() const override { return network_running_ > 0; }
    void stop() override;
    void report() override;
    std::string json() const override;

    /** An event at a camera: plans with events record it. Any thread. */
    void event(int channel, const std::string &kind, const std::string &text);

    /** The last event of a camera still lasts: its recording goes on. Any thread. */
    void prolong_event(int channel);

    /** Change the plan of a camera from now on. Main thread. */
    void set_plan(int channel, const RecordingPlan &plan);

    /**
     * Another camera is on a channel, with this name in the index. Its recording begins a file of its own and
     * counts anew; the file that is being written keeps the name that it was begun with. Main thread.
     */
    void set_name(int channel, const std::string &name);

    /** Change the retention from now on. Any thread. */
    void set_retention(const RetentionOptions &retention);

    /** Record all cameras, or none, or as planned, from now on. Main thread. */
    void set_order(RecordOrder order);

    std::vector<RecordingStatus> recordings() const override;
    DiskStatus disk() const override;
    bool runs(int channel) const override;

private:
    struct NetworkStream {
        int channel;
        std::unique_ptr<Recording> recording;
        std::unique_ptr<Feeder> feeder;
    };

    void start_writer();
    std::vector<RecordingReport> rows() const;
    uint64_t written_bytes() const;
    std::unique_ptr<Recording> make_recording(int channel, PoolStream stream);
    void start_network(int channel, const std::string &address);
    void tell_lines();
    void tell_disk();
    bool anything_runs() const;
    bool finish_writer();

    const RecorderOptions options_;
    WallControl *wall_ = nullptr;
    RecorderHooks hooks_;
    std::unique_ptr<RecorderIndex> index_; /* outlives the writer, which calls it */
    std::unique_ptr<DiskWriter> writer_;
    RecentRate rate_;                              /* of bytes written */
    std::vector<std::unique_ptr<Recording>> main_; /* by channel */
    std::vector<NetworkStream> network_;
    std::atomic<int> network_running_ = 0; /* feeders not at their end */
    RecordOrder order_ = RecordOrder::kAsPlanned;
    bool disk_hung_ = false; /* when it was looked at last */
};

} // namespace nvrec
