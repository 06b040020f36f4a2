/* time_line_texts.h - the texts of the time line, in both languages. */
#pragma once

#include <string>

#include "screen/clock_face.h"

namespace nvrec
{

struct TimeLineState;

/**
 * The line above the rows: "Playing 2x    2026-11-21 14:05:00    Not recorded".
 * @param clock  the position, as the time line writes it
 */
std::string time_line_heading(const TimeLineState &state, const std::string &clock, Language language);

} // namespace nvrec
