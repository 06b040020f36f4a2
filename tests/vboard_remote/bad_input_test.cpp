/* bad_input_test.cpp - whatever comes over the channel, the program goes on and good requests are answered.
 */
#include "driven.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

class BadInput : public testing::Test
{
protected:
    void TearDown() override
    {
        EXPECT_EQ(program.tell("environment"), "- -"); // the program is there
    }

    json error_of(const std::string &text)
    {
        program.write_text(text);
        const Message message = program.read_message();
        EXPECT_TRUE(message.content.is_object() && message.content.contains("error")) << text.substr(0, 80);
        return message.content.is_object() ? message.content.value("error", json::object()) : json::object();
    }
    std::string code_of(const std::string &name, const json &with)
    {
        const json answer = program.ask(name, with);
        return answer.is_object() && answer.contains("error") ? answer["error"]["code"] : "(no error)";
    }
    void expect_alive() { EXPECT_TRUE(program.ask("state").contains("ok")); }
    void expect_silent()
    {
        program.write_text(R"({"id": 1, "do": "state", "with": {}})");
        EXPECT_EQ(program.read_message().content, nullptr);
    }

    Driven program;
};

} // namespace

TEST_F(BadInput, TextsThatAreNoRequest)
{
    for (const char *text : {"", "garbage", "{", "[]", "7", "null", "\"state\"", "{\"do\"", "\xff\xfe\x00",
                             "{}", R"({"id": 1})", R"({"id": 1, "do": 7})", R"({"id": 1, "do": null})"})
        EXPECT_EQ(error_of(text)["code"], "bad_json") << text;
    EXPECT_EQ(error_of(R"({"id": 1, "do": "state", "with": 7})")["code"], "bad_parameter");
    EXPECT_EQ(error_of(R"({"id": 1, "do": "nothing"})")["code"], "not_found");
    EXPECT_EQ(error_of(R"({"id": 1, "do": ""})")["code"], "not_found");
    EXPECT_EQ(error_of(std::string(100000, '['))["code"], "bad_json");
    EXPECT_EQ(error_of(R"({"id": 1, "do": "press", "with": {"button": )" + std::string(100000, '[') +
                       std::string(100000, ']') + "}}")["code"],
              "bad_json"); // nobody has a stack for that
    expect_alive();
}

TEST_F(BadInput, IdentitiesThatAreNone)
{
    program.write_text(R"({"id": [1, {"a": "b"}], "do": "state", "with": null})");
    EXPECT_EQ(program.read_message().content["id"], nullptr);
    program.write_text(R"({"id": -5, "do": "state"})");
    EXPECT_EQ(program.read_message().content["id"], -5);
    program.write_text(R"({"do": "state"})");
    EXPECT_TRUE(program.read_message().content.contains("ok"));
    expect_alive();
}

TEST_F(BadInput, WrongTypesAndNumbersOutOfRange)
{
    const std::vector<std::pair<std::string, json>> wrong = {
        {"press", json::object()},
        {"press", {{"button", true}}},
        {"press", {{"button", -1}}},
        {"press", {{"button", 4294967296}}},
        {"press", {{"button", 1.5}}},
        {"press", {{"button", {1}}}},
        {"press", {{"button", std::string("menu\0x", 6)}}},
        {"ir", {{"code", 1}}},
        {"ir", {{"code", 18446744073709551615u}, {"state", 0}}},
        {"panel", {{"key", nullptr}}},
        {"mouse", {{"x", 5}}},
        {"mouse", {{"x", 5}, {"y", 40000}}},
        {"mouse", {{"buttons", 8}}},
        {"mouse", {{"wheel", -101}}},
        {"click", {{"x", 1}, {"y", 1}, {"button", "top"}}},
        {"click", {{"x", 1}, {"y", 1}, {"times", 4000000000u}}},
        {"monitor", {{"plug", "maybe"}}},
        {"monitor", {{"plug", false}}},
        {"analog", {{"input", 16}}},
        {"analog", {{"input", 0}, {"lost", "yes"}}},
        {"rtc", {{"seconds", -1}}},
        {"rtc", {{"seconds", 253402300800}}},
        {"rtc", {{"battery", "full"}}},
        {"fault", {{"call", 7}}},
        {"fault", {{"call", "board_open"}, {"nth", 0}}},
        {"fault", {{"call", "board_open"}, {"code", 2147483648}}},
        {"clock.step", {{"by", -1}}},
        {"clock.step", {{"by", 9223372036854775807}}},
        {"clock.step", {{"by", "2s"}}},
        {"clock.picture", {{"device", 3}}},
        {"pacing", {{"mode", "fast"}}},
        {"loud", {{"on", 1}}},
        {"trace.start", {{"file", ""}}},
        {"trace.start", {{"file", "../trace"}}},
        {"gpio.changes", {{"first", -1}}},
        {"audio.level", {{"device", 8}}},
        {"audio.level", {{"window", 0}}},
        {"wait.idle", {{"channel", 64}}},
        {"wait.idle", {{"channel", 0}, {"timeout", 600001}}},
        {"wait.taken", {{"ports", 0}, {"pictures", 1}}},
        {"wait.taken", {{"ports", 65536}, {"pictures", 1}}},
        {"wait.queued", {{"ports", 1}, {"pictures", 2}}},
        {"wait.sleepers", {{"count", -1}}},
        {"picture", {{"device", "main"}}},
        {"calls.follow", {{"on", nullptr}}}};
    for (const auto &[name, with] : wrong)
        EXPECT_EQ(code_of(name, with), "bad_parameter") << name << " " << with;
    expect_alive();
    EXPECT_EQ(program.ask("state")["ok"]["faults"]["set"], 0);
}

TEST_F(BadInput, AnOversizedLengthEndsTheChannel)
{
    program.write_bytes(std::string("\xff\xff\xff\xff\0\0\0\0", 8));
    expect_silent();
}

TEST_F(BadInput, ABlobThatNoRequestHasEndsTheChannel)
{
    program.write_bytes(std::string("\2\0\0\0\1\0\0\0{}x", 11));
    expect_silent();
}

TEST_F(BadInput, ATruncatedMessageEndsTheChannel)
{
    program.write_bytes(std::string("\xff\0\0\0\0\0\0\0{\"id\"", 13));
    program.close_channel();
}

TEST_F(BadInput, RandomBytes)
{
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::string text(random() % 200, '\0');
        for (char &letter : text)
            letter = static_cast<char>(random());
        program.write_text(text);
        EXPECT_TRUE(program.read_message().content.contains("error"));
    }
    expect_alive();
}

TEST_F(BadInput, RequestsWithBytesTurnedOver)
{
    std::mt19937 random(11);
    const std::string good =
        R"({"id": 1, "do": "mouse", "with": {"x": 10, "y": 20, "buttons": 1, "wheel": -3}})";
    for (int round = 0; round < 2000; ++round) {
        std::string text = good;
        for (int i = 0; i < 3; ++i)
            text[random() % text.size()] = static_cast<char>(random() % 128);
        program.write_text(text);
        const json answer = program.read_message().content;
        ASSERT_TRUE(answer.contains("error") || answer.contains("ok")) << text;
    }
    expect_alive();
}
