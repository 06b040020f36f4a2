/* play_clips.h - where the recordings and cameras are that play.cmake makes for the tests of playback. */
#pragma once

#include <string>

namespace nvrec_test
{

inline std::string clip(const std::string &name)
{
    return std::string(NVREC_STREAMS) + "/" + name;
}

} // namespace nvrec_test
