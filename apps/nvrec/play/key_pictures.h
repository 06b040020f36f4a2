/*
 * key_pictures.h - the last key frame of every camera, and its picture in the camera's own size, decoded
 * beside the board: for snapshots, which the library gives in one size alone.
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
    /** A camera's next frame; those that are no key frames are passed over. */
    void note(int channel, const AccessUnit &unit, Codec codec);

    /** Wait until a channel has sent a key frame. @return false = it has not by then. */
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
