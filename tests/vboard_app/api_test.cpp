/* api_test.cpp - the description of the requests, and the checks that follow from it. */
#include <map>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "api/check.h"
#include "api/description.h"
#include "api/nearest.h"
#include "board/board.h"

namespace
{

using nlohmann::json;
namespace api = vboard_app::api;
using vboard_app::RequestError;

/* What is wrong, as CODE PARAMETER: MESSAGE; empty: nothing. */
std::string wrong_with(const std::string &request, const json &parameters)
{
    try {
        api::check(request, parameters);
    } catch (const RequestError &error) {
        return error.code + " " + error.parameter + ": " + error.what();
    }
    return "";
}

std::string wrong_with_texts(const std::string &request, const std::map<std::string, std::string> &texts)
{
    try {
        api::check_texts(request, texts);
    } catch (const RequestError &error) {
        return error.code + " " + error.parameter + ": " + error.what();
    }
    return "";
}

TEST(Description, EveryRequestHasWhatItsUsersNeed)
{
    std::map<std::string, std::string> paths, verbs;
    for (const json &request : api::description().at("requests")) {
        const std::string name = request.at("name");
        EXPECT_EQ(
            paths.count(request.at("method").get<std::string>() + request.at("path").get<std::string>()), 0u);
        EXPECT_EQ(verbs.count(request.at("verb")), 0u) << name;
        paths[request.at("method").get<std::string>() + request.at("path").get<std::string>()] = name;
        verbs[request.at("verb")] = name;
        EXPECT_FALSE(request.at("about").get<std::string>().empty()) << name;
        EXPECT_TRUE(request.at("at") == "host" || request.at("at") == "board") << name;
        for (const auto &[parameter, description] : api::parameters_of(request).items())
            EXPECT_TRUE(description.contains("type")) << name << " " << parameter;
    }
}

TEST(Description, DefaultsHoldAgainstTheirOwnRanges)
{
    for (const json &request : api::description().at("requests"))
        for (const auto &[parameter, description] : api::parameters_of(request).items()) {
            if (!description.contains("default")) continue;
            const std::string wrong =
                wrong_with(request.at("name"), {{parameter, description.at("default")}});
            EXPECT_EQ(wrong.find("\"" + parameter + "\""), std::string::npos) << wrong;
        }
}

TEST(Check, DefaultsAreAdded)
{
    EXPECT_EQ(api::check("wait.idle", {{"channel", 3}}), json({{"channel", 3}, {"timeout", 5000}}));
    EXPECT_EQ(api::check("analog", {{"input", 3}, {"lost", nullptr}}), json({{"input", 3}}));
}

TEST(Check, WrongParametersAreNamed)
{
    EXPECT_EQ(wrong_with("wait.idle", json::object()), "bad_parameter channel: \"channel\" is missing");
    EXPECT_EQ(
        wrong_with("wait.idle", {{"chanel", 3}}),
        "bad_parameter chanel: \"chanel\" is no parameter of \"wait.idle\" (did you mean \"channel\"?)");
    EXPECT_EQ(wrong_with("wait.idle", {{"channel", 64}}),
              "bad_parameter channel: \"channel\" is 64, not 0 to 63");
    EXPECT_EQ(wrong_with("wait.idle", {{"channel", -1}}),
              "bad_parameter channel: \"channel\" is -1, not 0 to 63");
    EXPECT_EQ(wrong_with("wait.idle", {{"channel", 18446744073709551615u}}),
              "bad_parameter channel: \"channel\" is 18446744073709551615, not 0 to 63");
    EXPECT_EQ(wrong_with("wait.idle", {{"channel", 3.5}}),
              "bad_parameter channel: \"channel\" is not an integer");
    EXPECT_EQ(wrong_with("wait.idle", {{"channel", "3"}}),
              "bad_parameter channel: \"channel\" is not an integer");
    EXPECT_EQ(wrong_with("wait.idle", {{"channel", nullptr}}),
              "bad_parameter channel: \"channel\" is not an integer");
    EXPECT_EQ(wrong_with("monitor", {{"plug", "of"}}),
              "bad_parameter plug: \"plug\" is \"of\", not one of on, off (did you mean \"off\"?)");
    EXPECT_EQ(wrong_with("loud", {{"on", 1}}), "bad_parameter on: \"on\" is not a boolean");
    EXPECT_EQ(wrong_with("screen", {{"region", {1, 2, 3}}}),
              "bad_parameter region: \"region\" has 3 elements, not 4");
    EXPECT_EQ(wrong_with("screen", {{"region", {1, 2, 3, "4"}}}),
              "bad_parameter region: \"region\" has an element that is not an integer");
    EXPECT_EQ(wrong_with("press", {{"button", ""}}), "bad_parameter button: \"button\" is empty");
    EXPECT_EQ(wrong_with("press", {{"button", std::string("a\0b", 3)}}),
              "bad_parameter button: \"button\" has a zero byte in it");
    EXPECT_EQ(wrong_with("press", json::array()), "bad_json : the parameters are no JSON object");
    EXPECT_EQ(wrong_with("clock.stop", json::object()),
              "not_found : there is no request \"clock.stop\" (did you mean \"clock.step\"?)");
}

TEST(Texts, AreReadAsTheirTypesSay)
{
    EXPECT_EQ(api::check_texts("clock.step", {{"by", "40ms"}}).at("by"), 40000);
    EXPECT_EQ(api::check_texts("clock.step", {{"by", "1.5s"}}).at("by"), 1500000);
    EXPECT_EQ(api::check_texts("clock.step", {{"by", "2m"}}).at("by"), 120000000);
    EXPECT_EQ(api::check_texts("clock.step", {{"by", "3h"}}).at("by"), 10800000000);
    EXPECT_EQ(api::check_texts("clock.step", {{"by", "250"}}).at("by"), 250);
    EXPECT_EQ(api::check_texts("wait.idle", {{"channel", "0"}, {"timeout", "2s"}}).at("timeout"), 2000);
    EXPECT_EQ(api::check_texts("rtc", {{"seconds", "1970-01-02T00:00:01Z"}}).at("seconds"), 86401);
    EXPECT_EQ(api::check_texts("rtc", {{"seconds", "77"}}).at("seconds"), 77);
    EXPECT_EQ(api::check_texts("analog", {{"input", "3"}, {"lost", "on"}}).at("lost"), true);
    EXPECT_EQ(api::check_texts("screen", {{"region", "8,0,320,480"}}).at("region"), json({8, 0, 320, 480}));
    EXPECT_EQ(api::check_texts("press", {{"button", "0"}}).at("button"), "0");
    EXPECT_EQ(api::check_texts("press", {{"button", "0x619EFF00"}}).at("button"), 0x619EFF00);
    EXPECT_EQ(api::check_texts("fault", {{"call", "board_open"}, {"code", "-22"}}).at("code"), -22);
}

TEST(Texts, ThatAreNoneOfTheirTypeAreRefused)
{
    EXPECT_EQ(wrong_with_texts("clock.step", {{"by", "40x"}}),
              "bad_parameter by: \"by\" is \"40x\", not a duration as 40ms or 2s");
    EXPECT_NE(wrong_with_texts("clock.step", {{"by", "-1ms"}}), "");
    EXPECT_NE(wrong_with_texts("clock.step", {{"by", "99999999999h"}}), "");
    EXPECT_NE(wrong_with_texts("clock.step", {{"by", "ms"}}), "");
    EXPECT_NE(wrong_with_texts("clock.step", {{"by", ""}}), "");
    EXPECT_EQ(
        wrong_with_texts("rtc", {{"seconds", "2026-02-30T00:00:00Z"}}),
        "bad_parameter seconds: \"seconds\" is \"2026-02-30T00:00:00Z\", not seconds since 1970 or a time as "
        "2026-03-29T01:59:00Z");
    EXPECT_EQ(wrong_with_texts("wait.idle", {{"channel", "99999999999999999999"}}),
              "bad_parameter channel: \"channel\" is \"99999999999999999999\", not an integer");
    EXPECT_EQ(wrong_with_texts("loud", {{"on", "maybe"}}),
              "bad_parameter on: \"on\" is \"maybe\", not on or off");
    EXPECT_NE(wrong_with_texts("screen", {{"region", "1,2,,4"}}), "");
}

TEST(NearestName, IsTheOneThatWasProbablyMeant)
{
    EXPECT_EQ(vboard_app::nearest_name("clcok", {"press", "clock", "click"}), "clock");
    EXPECT_EQ(vboard_app::nearest_name("xyzzy", {"press", "clock"}), "");
    EXPECT_EQ(vboard_app::nearest_name("", {"a"}), "");
}

} // namespace
