/* read_board.cpp - see scenario.h: the board as it is when the program begins. */
#include "scenario/scenario.h"

#include "api/check.h"
#include "api/description.h"

namespace vboard_app::scenario
{
namespace
{

using nlohmann::json;

constexpr int64_t kLongestStep_us = 10'000'000;
constexpr int64_t kShortestStep_us = 100;

/* Seconds since 1970 of a time as 2026-03-29T01:59:00Z, or as they stand. */
std::optional<int64_t> seconds_of(const std::string &text)
{
    const json description = {{"type", "integer"}, {"unit", "s"}};
    try {
        const int64_t seconds = api::value_from_text("time", description, text).get<int64_t>();
        constexpr int64_t kEndOfYear9999 = 253402300799;
        if (seconds >= 0 && seconds <= kEndOfYear9999) return seconds;
    } catch (const RequestError &) {
    }
    return {};
}

void read_clock(Reader &reader, BoardStart &board)
{
    board.wall_us = kUsualWall_us;
    if (const auto clock = reader.text("clock")) {
        const auto begin = seconds_of(*clock);
        board.stepped = *clock != "realtime";
        if (begin)
            board.wall_us = *begin * 1'000'000;
        else if (*clock != "realtime" && *clock != "stepped")
            reader.choice("clock", {"realtime", "stepped", "or a time to begin at, as 2026-03-29T01:59:00Z"});
    }
    if (const auto wall = reader.text("wall")) {
        const auto begin = seconds_of(*wall);
        if (begin)
            board.wall_us = *begin * 1'000'000;
        else
            reader.problem(reader.take("wall")->line,
                           "\"wall\" is \"" + *wall + "\", not a time as 2026-03-29T01:59:00Z");
    }
    if (const auto step = reader.duration("step")) {
        board.step_us = *step;
        if (*step < kShortestStep_us || *step > kLongestStep_us)
            reader.problem(reader.take("step")->line, "\"step\" is not from 100us to 10s");
    }
}

void read_monitor(Reader &reader, BoardStart &board)
{
    static const std::vector<std::string> words = {"plugged", "unplugged", "on", "off"};
    if (const auto word = reader.choice("monitor", words)) board.plugged = *word % 2 == 0;
}

/* The items of a list; a single one may stand without it. */
std::vector<TreeNode> items_of(const TreeNode &node)
{
    return node.kind == TreeNode::Kind::list ? node.items : std::vector<TreeNode>{node};
}

void read_faults(Reader &reader, BoardStart &board)
{
    const TreeNode *list = reader.take("faults");
    if (list == nullptr) return;
    for (const TreeNode &item : items_of(*list)) {
        Reader entry(item, "a fault", reader.context());
        const auto call = entry.text("call");
        BootFault fault;
        fault.nth = static_cast<uint32_t>(entry.integer("nth", 1, UINT32_MAX).value_or(1));
        fault.count = static_cast<uint32_t>(entry.integer("count", 0, UINT32_MAX).value_or(1));
        fault.code = static_cast<int32_t>(entry.integer("code", INT32_MIN, INT32_MAX).value_or(-1));
        entry.finish({"call", "nth", "count", "code"});
        if (call)
            fault.call = *call;
        else if (item.kind == TreeNode::Kind::map && !entry.has("call"))
            entry.problem(item.line, "a fault names no \"call\"");
        board.faults.push_back(fault);
    }
}

void read_analog(Reader &reader, BoardStart &board)
{
    const TreeNode *list = reader.take("analog");
    if (list == nullptr) return;
    for (const TreeNode &item : items_of(*list)) {
        Reader entry(item, "an analog input", reader.context());
        BootInput input;
        input.input = static_cast<uint32_t>(entry.integer("input", 0, 15).value_or(0));
        input.lost = entry.boolean("lost").value_or(false);
        input.moving = static_cast<uint32_t>(entry.integer("moving", 0, UINT32_MAX).value_or(0));
        if (item.kind == TreeNode::Kind::map && !entry.has("input"))
            entry.problem(item.line, "an analog input wants its number, \"input\"");
        entry.finish({"input", "lost", "moving"});
        board.analog.push_back(input);
    }
}

void read_rtc(Reader &reader, BoardStart &board)
{
    const auto rtc = reader.text("rtc");
    if (!rtc) return;
    board.rtc_seconds = seconds_of(*rtc);
    board.rtc_battery = *rtc != "empty";
    if (!board.rtc_seconds && board.rtc_battery)
        reader.problem(reader.take("rtc")->line,
                       "\"rtc\" is \"" + *rtc +
                           "\", not a time as 2026-03-29T01:59:00Z, or \"empty\" for its battery");
}

} // namespace

BoardStart read_board(const TreeNode &node, Context &context)
{
    Reader reader(node, "\"board\"", context);
    BoardStart board;
    read_monitor(reader, board);
    read_clock(reader, board);
    static const std::vector<std::string> pacings = {"realtime", "step"};
    if (const auto pacing = reader.choice("pacing", pacings)) board.step_pacing = *pacing == 1;
    read_faults(reader, board);
    read_analog(reader, board);
    read_rtc(reader, board);
    reader.finish({"monitor", "clock", "wall", "step", "pacing", "faults", "analog", "rtc"});
    return board;
}

} // namespace vboard_app::scenario
