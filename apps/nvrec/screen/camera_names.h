/* camera_names.h - what the cameras are called on the screen. */
#pragma once

#include <map>
#include <string>

#include "screen/clock_face.h"
#include "screen/glyphs.h"

namespace nvrec
{

/** Names as the user gave them; a camera without one is called by its number, counted from 1. */
struct CameraNames {
    std::map<int, std::string> given; /* by channel */
    Language language = Language::kEnglish;
    ChineseScript script = ChineseScript::kAsTyped;

    std::string text_of(int channel) const;
    std::u16string of(int channel) const;

    /** Change the name of a channel's camera; empty = it is called by its number. */
    void name(int channel, const std::string &text);
};

} // namespace nvrec
