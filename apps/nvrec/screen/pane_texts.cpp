/* pane_texts.cpp - see pane_texts.h. */
#include "screen/pane_texts.h"

#include <algorithm>
#include <iterator>

#include "nvrhal/limits.h"
#include "wall/recording_status.h"

namespace nvrec
{
namespace
{

struct NoticeRow {
    PaneNotice notice;
    const char *titles[2]; /* by Language */
};

constexpr NoticeRow kNotices[] = {
    {PaneNotice::kNone, {"", ""}},
    {PaneNotice::kMissing, {"No video", "无视频信号"}},
    {PaneNotice::kNoVideo, {"No video", "无视频信号"}},
    {PaneNotice::kRefused, {"Cannot be shown", "无法显示"}},
    {PaneNotice::kWaitsForKey, {"", ""}},
};

constexpr const char *kWaitsForKey[2] = {"Waiting for the next key frame", "等待下一个关键帧"};

constexpr const char *kDiskTexts[][2] = {
    {"", ""},
    {"The disk does not answer", "磁盘无响应"},
    {"The disk is full", "磁盘已满"},
    {"Recording fails", "录像失败"},
};
static_assert(std::size(kDiskTexts) == static_cast<size_t>(DiskState::kFailing) + 1);

constexpr const char *kRecordingFails[2] = {"is not recorded", "录像失败"};
constexpr const char *kMainIsLost[2] = {"its main stream does not come", "主码流中断"};

constexpr bool rows_are_in_order()
{
    int expected = 0;
    for (const NoticeRow &row : kNotices) {
        if (static_cast<int>(row.notice) != expected++) return false;
    }
    return true;
}
static_assert(rows_are_in_order(), "a notice is found by its position");

/* Both sizes in thousands of bytes. */
std::string refusal_of(const PaneState &state, bool chinese)
{
    if (state.too_large_bytes == 0) return chinese && state.undecodable ? "图像无法解码" : state.reason;
    auto kilobytes = [](uint64_t bytes) { return std::to_string((bytes + 500) / 1000) + " kB"; };
    const std::string size = kilobytes(state.too_large_bytes), most = kilobytes(NVRHAL_MAX_SEND_BYTES);
    return chinese ? "关键帧 " + size + "，超过上限 " + most
                   : "its key frame has " + size + "; the decoder takes " + most;
}

std::string line_of(const PaneState &state, const std::string &name, std::time_t now, bool chinese)
{
    switch (state.notice) {
    case PaneNotice::kNone: return {};
    case PaneNotice::kWaitsForKey: return kWaitsForKey[chinese];
    case PaneNotice::kMissing:
        if (!state.reason.empty()) return name + (chinese ? "：" : ": ") + state.reason;
        return chinese ? name + "尚未接入" : name + " has not come yet";
    case PaneNotice::kRefused: return refusal_of(state, chinese);
    case PaneNotice::kNoVideo: break;
    }
    if (state.since == 0) return state.reason;
    const std::string since = since_text(state.since, now);
    return chinese ? "自 " + since + " 起" : "since " + since;
}

} // namespace

bool same_day(std::time_t a, std::time_t b)
{
    std::tm first = {}, second = {};
    localtime_r(&a, &first);
    localtime_r(&b, &second);
    return first.tm_year == second.tm_year && first.tm_yday == second.tm_yday;
}

std::string since_text(std::time_t since, std::time_t now)
{
    std::tm then = {};
    localtime_r(&since, &then);
    char text[32];
    std::strftime(text, sizeof text, same_day(since, now) ? "%H:%M:%S" : "%Y-%m-%d %H:%M:%S", &then);
    return text;
}

NoticeText notice_text(const PaneState &state, const std::string &name, std::time_t now, Language language)
{
    const bool chinese = language == Language::kChinese;
    return {kNotices[static_cast<int>(state.notice)].titles[chinese], line_of(state, name, now, chinese)};
}

std::string alarm_text(const RecordingView *recorder, const std::string &alarm, const CameraNames &names,
                       const std::vector<int> &without_main)
{
    const bool chinese = names.language == Language::kChinese;
    const std::string colon = chinese ? "：" : ": ";
    auto with = [&colon](const std::string &text, const std::string &detail) {
        return detail.empty() ? text : text + colon + detail;
    };
    const DiskStatus disk = recorder ? recorder->disk() : DiskStatus{};
    if (disk.state != DiskState::kGood)
        return with(kDiskTexts[static_cast<size_t>(disk.state)][chinese],
                    disk.state == DiskState::kFailing ? disk.trouble : std::string());
    std::string lost;
    for (const RecordingStatus &stream : recorder ? recorder->recordings() : std::vector<RecordingStatus>()) {
        const std::string name = names.text_of(stream.channel) + (chinese ? "" : " ");
        if (stream.state == RecordingState::kFailing)
            return with(name + kRecordingFails[chinese], stream.last_error);
        if (lost.empty() && stream.state == RecordingState::kWaiting && stream.stream == "main" &&
            std::ranges::find(without_main, stream.channel) != without_main.end())
            lost = with(name + kRecordingFails[chinese], kMainIsLost[chinese]);
    }
    return lost.empty() ? alarm : lost;
}

} // namespace nvrec
