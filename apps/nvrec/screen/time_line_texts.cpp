/* time_line_texts.cpp - see time_line_texts.h. */
#include "screen/time_line_texts.h"

#include "console/text.h"
#include "screen/time_line.h"

namespace nvrec
{
namespace
{

/* By Language. */
constexpr const char *kPaused[2] = {"Paused", "已暂停"};
constexpr const char *kPlaying[2] = {"Playing", "正在播放"};
constexpr const char *kNotRecorded[2] = {"Not recorded", "无录像"};
constexpr const char *kApart = "    ";

} // namespace

std::string time_line_heading(const TimeLineState &state, const std::string &clock, Language language)
{
    const bool chinese = language == Language::kChinese;
    std::string line = state.paused ? kPaused[chinese] : kPlaying[chinese] + text(" %gx", state.speed);
    line += kApart + clock;
    if (state.in_gap) line += std::string(kApart) + kNotRecorded[chinese];
    return line;
}

} // namespace nvrec
