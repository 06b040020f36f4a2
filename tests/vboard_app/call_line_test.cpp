/* call_line_test.cpp - lines of a call trace, taken apart: good ones, and any others. */
#include "trace/call_line.h"

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "trace/call_fields.h"
#include "trace/call_json.h"

namespace
{

using namespace vboard_app;

class ALine : public testing::Test
{
protected:
    const CallLine &parsed(std::string_view line)
    {
        EXPECT_EQ(parse_call(line, call_), "") << line;
        return call_;
    }
    std::string_view wrong_with(std::string_view line) { return parse_call(line, call_); }
    std::string value(std::string_view path)
    {
        const CallField *field = call_.find(path);
        return field != nullptr ? std::string(field->text) : "absent";
    }

    CallLine call_;
};

TEST(CallFields, NameEveryCallOfTheSeams)
{
    std::ifstream names(PLATFORM_CALLS);
    std::set<std::string> listed;
    for (std::string name; names >> name;)
        listed.insert(name);
    EXPECT_GT(listed.size(), 70u);
    std::set<std::string> known;
    for (const CallFields &call : all_call_fields())
        known.insert(std::string(call.name));
    EXPECT_EQ(known, listed);
    for (const std::string &name : listed)
        EXPECT_NE(find_call_fields(name), nullptr) << name;
    EXPECT_EQ(find_call_fields("MI_VDEC_Start"), nullptr);
    EXPECT_EQ(find_call_fields(""), nullptr);
}

TEST(CallFields, HaveArgumentsOfTheHeaderAndMembersOfTheTrace)
{
    const CallFields *call = find_call_fields("MI_VDEC_SendStream");
    ASSERT_NE(call, nullptr);
    ASSERT_EQ(call->count, 3u);
    EXPECT_EQ(call->arguments[0].name, "channel");
    EXPECT_TRUE(call->arguments[0].members.empty());
    EXPECT_EQ(call->arguments[1].name, "stream");
    ASSERT_EQ(call->arguments[1].members.size(), 5u);
    EXPECT_EQ(call->arguments[1].members[0], "length");
    EXPECT_EQ(call->arguments[1].members[4], "crc32");
    EXPECT_EQ(call->arguments[2].name, "timeout_ms");
}

TEST(CallFields, SayWhatACodeMeans)
{
    EXPECT_EQ(result_meaning("0xa008000f"), "VDEC: buffer full");
    EXPECT_EQ(result_meaning("0xa0010005"), "SYS: absent");
    for (const char *other :
         {"0", "-1", "0x", "0xa0080099", "0xa0990005", "0xb0080005", "0xa1080005", "0xa008010f", "null", ""})
        EXPECT_EQ(result_meaning(other), "") << other;
}

TEST_F(ALine, HasTimeNameArgumentsAndResult)
{
    const CallLine &call = parsed(
        "812345 MI_VDEC_CreateChn 7 {codec=1 buffer=1048576 priority=0 max_width=1920 max_height=1080 mode=1 "
        "references=2 buffers=2} = 0");
    EXPECT_EQ(call.time_us, 812345);
    EXPECT_EQ(call.name, "MI_VDEC_CreateChn");
    ASSERT_EQ(call.arguments.size(), 2u);
    EXPECT_EQ(value("channel"), "7");
    EXPECT_EQ(value("attr.max_width"), "1920");
    EXPECT_EQ(call.number("attr.buffers"), 2);
    EXPECT_EQ(value("attr.width"), "absent");
    EXPECT_EQ(call.channel, 7u);
    EXPECT_EQ(call.result, "0");
    EXPECT_FALSE(call.failed);
    EXPECT_FALSE(call.event);
    EXPECT_FALSE(call.thread.has_value());
    EXPECT_FALSE(call.duration_us.has_value());
}

TEST_F(ALine, MayHaveThreadAndDuration)
{
    const CallLine &call = parsed("5 MI_VDEC_SendStream 1 {length=9 pts=0 end_of_frame=0 end_of_stream=0 "
                                  "crc32=12345678} -1 = 0xa008000f ; thread 3, 4100 us");
    EXPECT_EQ(call.thread, 3u);
    EXPECT_EQ(call.duration_us, 4100);
    EXPECT_EQ(call.result, "0xa008000f");
    EXPECT_TRUE(call.failed);
    EXPECT_EQ(value("stream.crc32"), "12345678");
}

TEST_F(ALine, MayHaveAReasonBehindItsResult)
{
    const CallLine &call =
        parsed("9 MI_SYS_UnBindChnPort {module=8 device=0 channel=4 port=0} {module=15 device=0 "
               "channel=3 port=0} = 0xa0010005 (absent) ; thread 1, 0 us");
    EXPECT_EQ(call.reason, "absent");
    EXPECT_EQ(call.channel, 4u);
    EXPECT_EQ(call.thread, 1u);
    EXPECT_EQ(value("sink.channel"), "3");
    EXPECT_EQ(value("sink.module"), "15");
}

TEST_F(ALine, MayHaveNoArgument)
{
    const CallLine &call = parsed("0 MI_SYS_Init = 0");
    EXPECT_TRUE(call.arguments.empty());
    EXPECT_FALSE(call.channel.has_value());
    EXPECT_FALSE(parsed("0 MI_HDMI_DeInit = 0").failed);
}

TEST_F(ALine, MayHoldATextWithAnythingInIt)
{
    parsed(R"(1 board_run_command "echo "a" = 3 (x) ; thread 1, 2 us {b" = 0 ; thread 4, 5 us)");
    EXPECT_EQ(value("command"), R"(echo "a" = 3 (x) ; thread 1, 2 us {b)");
    EXPECT_EQ(call_.thread, 4u);
    EXPECT_EQ(call_.result, "0");
    parsed(R"(1 board_open "/dev/fb0" 2 = 1000)");
    EXPECT_EQ(value("path"), "/dev/fb0");
    EXPECT_EQ(value("flags"), "2");
    EXPECT_FALSE(call_.failed);
    parsed(R"(1 board_open "" 2 = -1)");
    EXPECT_EQ(value("path"), "");
    EXPECT_TRUE(call_.failed);
}

TEST_F(ALine, MayHoldWhatWasNotFilledOrIsNoNumber)
{
    EXPECT_TRUE(parsed("1 MI_VDEC_GetChnStat 9 - = 0xa0080005").failed);
    EXPECT_EQ(value("stat"), "-");
    EXPECT_TRUE(parsed("1 MI_VDEC_GetChnAttr 0 null = 0xa0080006").failed);
    EXPECT_EQ(value("attr"), "null");
    EXPECT_FALSE(parsed("1 board_map 1000 4096 = address").failed);
    EXPECT_TRUE(parsed("1 board_map 1000 4096 = null").failed);
    EXPECT_FALSE(parsed("1 board_ioctl 1000 17920 data = 0").failed);
}

TEST_F(ALine, FailsByAPositiveCodeOfTheMediaInterfaceOnly)
{
    EXPECT_TRUE(parsed("1 MI_VDEC_StartChn 0 = 5").failed);
    EXPECT_FALSE(parsed("1 board_open \"/dev/fb0\" 2 = 5").failed);
}

TEST_F(ALine, MayTellOfAnEvent)
{
    const CallLine &call = parsed("812500 event remote {code=0x6a95ff00 state=2}");
    EXPECT_TRUE(call.event);
    EXPECT_EQ(call.name, "remote");
    EXPECT_EQ(call.number("code"), 0x6a95ff00);
    EXPECT_EQ(call.number("state"), 2);
    EXPECT_FALSE(call.failed);
    EXPECT_EQ(parsed("1 event mouse {type=1 buttons=0 x=3 y=-4 wheel=0}").number("y"), -4);
    EXPECT_EQ(parsed("1 event later").name, "later");
}

TEST_F(ALine, OfACallThatIsNotKnownIsTakenApartWithoutNames)
{
    parsed("1 MI_VDEC_Later 4 {a=1 b=-} = 0");
    EXPECT_EQ(value("argument1"), "4");
    EXPECT_EQ(value("argument2.b"), "-");
    EXPECT_FALSE(call_.channel.has_value());
}

TEST_F(ALine, ThatIsDamagedIsToldWhatIsWrong)
{
    EXPECT_EQ(wrong_with(""), "no time at its beginning");
    EXPECT_EQ(wrong_with("x"), "no time at its beginning");
    EXPECT_EQ(wrong_with("99999999999999999999 MI_SYS_Init = 0"), "no time at its beginning");
    EXPECT_EQ(wrong_with("12MI_SYS_Init = 0"), "no time at its beginning");
    EXPECT_EQ(wrong_with("12 MI_SYS_Init"), "no result");
    EXPECT_EQ(wrong_with("12 MI_SYS_Init = "), "a result that is none");
    EXPECT_EQ(wrong_with("12 MI_SYS_Init = 0xq"), "a result that is none");
    EXPECT_EQ(wrong_with("12 MI_SYS_Init = 0 more"), "a result that is none");
    EXPECT_EQ(wrong_with("12 MI_SYS_Init = 0 ; thread x, 1 us"), "a result that is none");
    EXPECT_EQ(wrong_with("12 MI-SYS = 0"), "no name of a call");
    EXPECT_EQ(wrong_with("12  = 0"), "no name of a call");
    EXPECT_EQ(wrong_with("12 MI_VDEC_StartChn = 0"), "fewer arguments than the call has");
    EXPECT_EQ(wrong_with("12 MI_VDEC_StartChn  = 0"), "fewer arguments than the call has");
    EXPECT_EQ(wrong_with("12 MI_VDEC_GetChnStat 0 {bytes=1 = 0"), "a record without its end");
    EXPECT_EQ(wrong_with("12 MI_VDEC_GetChnStat 0 {bytes} = 0"),
              "a member of a record without a name or a value");
    EXPECT_EQ(wrong_with("12 MI_VDEC_GetChnStat 0 {bytes=1}2 = 0"), "no blank between two arguments");
    EXPECT_EQ(wrong_with("12 board_open \"/dev = 0"), "a text without its end");
    EXPECT_EQ(wrong_with("12 X 1 2 3 4 5 6 7 8 9 = 0"), "too many arguments");
    EXPECT_EQ(wrong_with("12 event "), "an event without a name");
    EXPECT_EQ(wrong_with("12 event plug plugged"), "an event that is no record");
    EXPECT_EQ(wrong_with("12 event plug {plugged=1} 2"), "an event that is no record");
    EXPECT_EQ(wrong_with(std::string_view("12 A \0 = 0", 10)), "a zero byte");
    std::string wide = "12 X {a=1";
    for (int member = 0; member < 100; ++member)
        wide += " a=1";
    EXPECT_EQ(wrong_with(wide + "} = 0"), "a record of too many members");
}

TEST_F(ALine, IsTakenOrRefusedWhereverItIsCutOrDamaged)
{
    const std::string whole =
        "812391 MI_SYS_BindChnPort {module=8 device=0 channel=0 port=0} {module=15 device=0 "
        "channel=3 port=0} 15 15 = 0xa0010004 (x) ; thread 2, 3 us";
    for (size_t size = 0; size < whole.size(); ++size) {
        // A copy of its own, so that a read beyond its end is seen.
        const std::vector<char> cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        parse_call({cut.data(), cut.size()}, call_);
        for (const char other : {'{', '}', '"', ' ', '=', ';', '0', '\0', '\xff'}) {
            std::vector<char> damaged(whole.begin(), whole.end());
            damaged[size] = other;
            if (parse_call({damaged.data(), damaged.size()}, call_).empty()) {
                EXPECT_FALSE(call_json(call_, "").empty());
            }
        }
    }
    parsed(whole);
}

TEST_F(ALine, AsJsonHasNumbersRecordsAndWhatIsMissing)
{
    const std::string line =
        "5 MI_VDEC_SendStream 1 {length=9 pts=70 end_of_frame=0 end_of_stream=0 crc32=12345678} "
        "-1 = 0xa008000f ; thread 3, 41 us";
    EXPECT_EQ(call_json(parsed(line), line), nlohmann::json::parse(R"({
        "time_us": 5, "duration_us": 41, "thread": 3, "name": "MI_VDEC_SendStream", "channel": 1, "failed": true,
        "result": "0xa008000f", "arguments": [
            {"name": "channel", "value": 1},
            {"name": "stream", "value": {"length": 9, "pts": 70, "end_of_frame": 0, "end_of_stream": 0,
                                         "crc32": "12345678"}},
            {"name": "timeout_ms", "value": -1}],
        "text": ")" + line + R"("})"));
    const std::string open = "6 board_open \"7\" 2 = -1";
    const nlohmann::json json = call_json(parsed(open), open);
    EXPECT_EQ(json["arguments"][0]["value"], "7");
    EXPECT_TRUE(json["channel"].is_null());
    EXPECT_TRUE(json["thread"].is_null());
    EXPECT_EQ(call_json(parsed("1 event panel {code=109}"), "")["name"], "event panel");
}

} // namespace
