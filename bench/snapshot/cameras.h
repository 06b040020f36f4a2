/* cameras.h - the library with a wall of cameras that send in real time, or as fast as decoded. */
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "clip.h"

namespace snapbench
{

constexpr double kFrameInterval_ms = 40; // 25 frames a second

/** Start the library and lay `cameras` panes out. False: after a message on standard error. */
bool start_wall(const wallbench::Clip &clip, int cameras);

/** Send frame `index` (wrapping) of the clip to a channel. */
bool send_frame(const wallbench::Clip &clip, uint32_t channel, size_t index);

/** Take one snapshot and give its buffer back. The bytes it had, or 0. */
uint32_t take_snapshot(uint32_t channel);

/** All cameras send one frame an interval, on a thread of their own, while this lives. */
class RunningCameras
{
public:
    RunningCameras(const wallbench::Clip &clip, int cameras);
    ~RunningCameras();
    uint64_t refused() const { return refused_.load(); }

private:
    std::atomic<bool> done_{false};
    std::atomic<uint64_t> refused_{0};
    std::thread sender_;
};

/** Pictures that the ports of the wall have taken, and those replaced before a refresh showed them. */
struct WallCount {
    uint64_t taken = 0, dropped = 0;
};
WallCount count_wall(int cameras);

} // namespace snapbench
