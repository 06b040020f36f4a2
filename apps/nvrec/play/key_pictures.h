/*
 * key_pictures.h - keeps the last key frame of every camera, and decodes it without the board, in the
 * camera's own size. Snapshots use it, since the library gives one size only.
 *
 * Threads: note() on the cameras', all else on any.
 */
#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "camera/input.h"
#include "host/clock.h"
#include "nvrhal/limits.h"

namespace nvrec
{

/** A picture as a JPEG file's bytes. */
struct StillPicture {
    int width = 0, height = 0;
    std::vector<uint8_t> jpeg;
};

class KeyPictures
{
public:
    /** A camera's next frame; only key frames are kept. */
    void note(int channel, const AccessUnit &unit, Codec codec);

    /** Wait until a channel has sent a key frame. @return false = none came in time. */
    bool wait_for(int channel, Clock::time_point until);

    /** The picture of a channel's last key frame; nothing = it has none, or it cannot be decoded. */
    std::optional<StillPicture> take(int channel) const;

private:
    struct Kept {
        std::vector<uint8_t> bytes; /* Annex B, parameter sets in front */
        Codec codec = Codec::kH264;
    };

    mutable std::mutex lock_; /* guards what follows */
    std::array<Kept, NVRHAL_MAX_CAMERAS> kept_;
    Condition came_;
};

} // namespace nvrec
