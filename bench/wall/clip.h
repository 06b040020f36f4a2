/* clip.h - an encoded clip in memory, one entry a frame, as a camera would send it. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace wallbench
{

struct Clip {
    bool h265 = false;
    int width = 0; // pixels
    int height = 0;
    std::vector<std::vector<uint8_t>> frames; // Annex B, parameter sets in front of key frames
};

/** Read a clip's video stream. Ends the program with a message when it cannot be read. */
Clip load_clip(const std::string &path);

} // namespace wallbench
