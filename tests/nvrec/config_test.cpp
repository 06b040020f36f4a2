/* The configuration: every key, every fault at once with its place; quantities, the example, the command. */
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "config/page_address.h"
#include "config/quantity.h"
#include "config/read.h"
#include "nvrec_run.h"
#include "read_configuration.h"

namespace
{

using namespace nvrec_test;

TEST_F(Configuration, TheSmallestNamesOneCamera)
{
    const Reading reading = read(kOneCamera);
    EXPECT_EQ(places(reading), Texts{}) << all_text(reading);
    ASSERT_EQ(reading.config.cameras.size(), 1u);
    const Camera &camera = reading.config.cameras[0];
    EXPECT_EQ(camera.name, "yard");
    EXPECT_EQ(camera.main, "rtsp://192.0.2.7/s");
    EXPECT_EQ(camera.aspect, Aspect::kFit);
    EXPECT_FALSE(camera.measured_link);
    EXPECT_EQ(camera.plan, Plan{});
    EXPECT_EQ(reading.config.channels(), 1);
    EXPECT_EQ(reading.config.record.directory, "") << "nothing is recorded unasked";
    EXPECT_EQ(reading.config.status.page, "") << "nothing listens unasked";
}

TEST_F(Configuration, EveryKeyArrives)
{
    const Reading reading = read(R"(
[screen]
output = "1280x1024"
layout = "1+5"
window = "off"
overlay = "on"
language = "zh"
traditional = true
snapshots = "shots"
[record]
directory = "/recordings"
format = "mkv"
segment = "10 min"
[retention]
size = "1.5 TB"
age = "30 days"
free = "256 MiB"
[sound]
camera = "yard"
wav = "heard.wav"
[board]
channels = 3
watchdog = 30
hung_after = 2.5
[control]
socket = "run/socket"
[status]
page = "[::1]:9310"
token = "0123456789abcdef"
[log]
file = "nvrec.log"
level = "debug"
size = "1 MB"
keep = 2
[[camera]]
name = "yard"
main = "rtsp://192.0.2.7/s1"
sub = "rtsp://192.0.2.7/s2"
user = "admin"
password = "secret"
transport = "udp"
aspect = "stretch"
link = "measured"
[camera.record]
mode = "event"
before = 3
after = "1 min"
alarm = false
motion = false
[[camera]]
name = "门"
main = "door.mp4"
loop = true
sound = false
record = { mode = "hours", hours = ["Mon-Fri 08:00-18:00", "22:00-06:00"] }
)");
    EXPECT_EQ(places(reading), Texts{}) << all_text(reading);
    const Config &config = reading.config;
    EXPECT_EQ(config.screen.output, "1280x1024");
    EXPECT_EQ(config.screen.layout, "1+5");
    EXPECT_EQ(config.screen.window, Wanted::kOff);
    EXPECT_EQ(config.screen.overlay, Wanted::kOn);
    EXPECT_EQ(config.screen.language, "zh");
    EXPECT_TRUE(config.screen.traditional);
    EXPECT_EQ(config.screen.snapshots, scratch_.file("shots")) << "from the file's directory";
    EXPECT_EQ(config.record, (Record{"/recordings", Kind::kMkv, 600}));
    EXPECT_EQ(config.retention, (Retention{1'500'000'000'000, 30 * 86400, 256 << 20}));
    EXPECT_EQ(config.sound, (Sound{"yard", scratch_.file("heard.wav")}));
    EXPECT_EQ(config.board, (Board{3, 30, 2.5}));
    EXPECT_EQ(config.control.socket, scratch_.file("run/socket"));
    EXPECT_EQ(config.status, (Status{"[::1]:9310", "0123456789abcdef", false}));
    EXPECT_EQ(config.log, (Log{scratch_.file("nvrec.log"), Level::kDebug, 1'000'000, 2}));
    ASSERT_EQ(config.cameras.size(), 2u);
    const Camera &yard = config.cameras[0];
    EXPECT_EQ(yard.sub, "rtsp://192.0.2.7/s2");
    EXPECT_EQ(yard.user + ":" + yard.password, "admin:secret");
    EXPECT_EQ(yard.transport, Transport::kUdp);
    EXPECT_EQ(yard.aspect, Aspect::kStretch);
    EXPECT_TRUE(yard.measured_link);
    EXPECT_TRUE(yard.sound);
    EXPECT_EQ(yard.plan, (Plan{RecordMode::kEvent, {}, 3, 60, false, false}));
    const Camera &door = config.cameras[1];
    EXPECT_EQ(door.main, scratch_.file("door.mp4"));
    EXPECT_TRUE(door.loop);
    EXPECT_FALSE(door.sound);
    EXPECT_EQ(door.plan.hours, (std::vector<Hours>{{0b0011111, 480, 1080}, {0b1111111, 1320, 360}}));
}

TEST_F(Configuration, EveryFaultIsToldAtOnceWithItsLineAndKey)
{
    const Reading reading = read(R"(secret = "x"
[screen]
layot = "2x2"
layout = "2x"
[record]
directory = 3
segment = "1 weak"
[[camera]]
name = "yard"
main = "rtsp://192.0.2.7/s"
transprt = "tcp"
[[camera]]
name = "yard"
main = "http://192.0.2.8/"
[camera.record]
mode = "hours"
before = 3
[status]
page = "0.0.0.0:9310"
[retention]
size = 500
)");
    EXPECT_EQ(places(reading), (Texts{"1 secret", "3 screen.layot", "4 screen.layout", "6 record.directory",
                                      "7 record.segment", "11 camera[1].transprt", "13 camera[2].name",
                                      "14 camera[2].main", "15 camera[2].record.hours",
                                      "17 camera[2].record.before", "19 status.page", "21 retention.size"}))
        << all_text(reading);
    const std::string text = all_text(reading);
    EXPECT_NE(text.find(R"(did you mean "secrets"?)"), std::string::npos);
    EXPECT_NE(text.find(R"(did you mean "layout"?)"), std::string::npos);
    EXPECT_NE(text.find(R"(did you mean "2x2"?)"), std::string::npos);
    EXPECT_NE(text.find(R"(did you mean "transport"?)"), std::string::npos);
    EXPECT_NE(text.find("needs a token"), std::string::npos);
}

TEST_F(Configuration, ValuesOfTheWrongKindAndOutOfBoundsAreFaults)
{
    const std::pair<const char *, const char *> faults[] = {
        {"screen = 3", "1 screen"},
        {"screen.layout = 4", "1 screen.layout"},
        {"screen.overlay = true", "1 screen.overlay"},
        {"screen.traditional = \"yes\"", "1 screen.traditional"},
        {"screen.font = \"absent.ttf\"", "1 screen.font"},
        {"screen.output = \"640x480\"", "1 screen.output"},
        {"record.directory = \"\"", "1 record.directory"},
        {"record.segment = 0", "1 record.segment"},
        {"record.segment = nan", "1 record.segment"},
        {"record.segment = 1979-05-27", "1 record.segment"},
        {"board.channels = 17", "1 board.channels"},
        {"board.channels = 1.5", "1 board.channels"},
        {"board.watchdog = -1", "1 board.watchdog"},
        {"board.watchdog = 0.5", "1 board.watchdog"}, /* 0 would be off */
        {"record.segment = 90.5", "1 record.segment"},
        {"log.size = \"-3 MB\"", "1 log.size"},
        {"log.keep = 9223372036854775807", "1 log.keep"},
        {"sound.camera = \"garden\"", "1 sound.camera"},
        {"sound.wav = \"x.wav\"", "1 sound.wav"},
        {"status.page = \"localhost\"", "1 status.page"},
        {"status.token = \"short\"", "1 status.token"},
        {"status = { page = \"127.0.0.1:80\", qr = true }", "1 status.qr"},
        {"status = { page = \"0.0.0.0:80\", token = \"0123456789abcdef\", qr = true }", "1 status.qr"},
        {"secrets = \"absent.toml\"", "0 "},
        {"control.socket = \"a\\u0000b\"", "1 control.socket"},
        {"retention.age = \"1 day\"", "1 retention"},
    };
    for (const auto &[line, place] : faults) {
        const Reading reading = read(std::string(line) + "\n" + kOneCamera);
        ASSERT_EQ(reading.faults.size(), 1u) << line << "\n" << all_text(reading);
        EXPECT_EQ(places(reading).front(), place) << line;
    }
}

TEST_F(Configuration, ACameraWithoutSoundIsNotTheOneThatIsHeard)
{
    const std::string text = std::string("sound.camera = \"yard\"\n") + kOneCamera;
    EXPECT_EQ(places(read(text)), Texts{});
    EXPECT_EQ(places(read(text + "sound = false\n")), Texts{"1 sound.camera"});
}

TEST_F(Configuration, TimesOfWholeSecondsAreNotCutOff)
{
    const Reading reading =
        read("record.directory = \"x\"\nrecord.segment = \"1.13 h\"\nretention.age = \"0.7 days\"\n" +
             std::string(kOneCamera));
    EXPECT_EQ(places(reading), Texts{}) << all_text(reading);
    EXPECT_EQ(reading.config.record.segment_s, 4068);
    EXPECT_EQ(reading.config.retention.age_s, 60480);
}

TEST_F(Configuration, WhatIsNoConfigurationIsSaid)
{
    EXPECT_EQ(places(read_config(scratch_.file("absent"))), Texts{"0 "});
    EXPECT_EQ(places(read_config(scratch_.path())), Texts{"0 "}) << "a directory";
    ASSERT_EQ(mkfifo(scratch_.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(places(read_config(scratch_.file("pipe"))), Texts{"0 "}) << "and no waiting for its other end";
    EXPECT_EQ(places(read("")), Texts{"1 camera"});
    EXPECT_EQ(places(read("a = 1\nb = \n")), Texts{"2 "}) << "TOML's own faults have their line";
    EXPECT_EQ(places(read("a = \"\xff\xfe\"\n")).size(), 1u);
    EXPECT_EQ(places(read(std::string(2 << 20, '#'))), Texts{"0 "});
    EXPECT_EQ(read("camera = 3").faults.size(), 2u);
    EXPECT_GE(read("camera = [3, \"x\", {}]").faults.size(), 3u);
    EXPECT_EQ(places(read(std::string(kOneCamera) + "[camera.record]\nmode = \"always\"\n")),
              Texts{"4 camera[1].record"})
        << "nothing says where to";
    std::string seventeen;
    for (int i = 0; i < 17; ++i)
        seventeen += "[[camera]]\nname = \"" + std::to_string(i) + "\"\nmain = \"x.mp4\"\n";
    EXPECT_EQ(read(seventeen).faults.size(), 1u);
}

TEST(Quantities, AreReadAsUsersWriteThem)
{
    EXPECT_EQ(seconds_of("90 s"), 90);
    EXPECT_EQ(seconds_of("1.5h"), 5400);
    EXPECT_EQ(seconds_of("30 Days"), 30 * 86400);
    for (const char *none : {"", "1", "1 x", "-1 s", "s", "1e3 s", "inf s", "nan s", "1 s s"})
        EXPECT_FALSE(seconds_of(none)) << none;
    EXPECT_EQ(bytes_of("500 GB"), 500'000'000'000);
    EXPECT_EQ(bytes_of("2 MiB"), 2 << 20);
    for (const char *none : {"", "500", "1 G", "-1 GB", "99999999 TB"})
        EXPECT_FALSE(bytes_of(none)) << none;
    EXPECT_EQ(hours_of("Sat-Mon 00:00-24:00"), (Hours{0b1100001, 0, 1440})) << "round the week's end";
    for (const char *none : {"", "8-18", "08:00", "24:00-06:00", "08:00-08:00", "08:60-09:00", "08:00-25:00",
                             "Mo 08:00-09:00", "Mon- 08:00-09:00", "08:00-00:00", "Mon 08:00-18:00x"})
        EXPECT_FALSE(hours_of(none)) << none;
}

TEST(PageAddress, KnowsWhatLoopbackIs)
{
    for (const char *own : {"127.0.0.1:80", "127.9.9.9:65535", "[::1]:80"}) {
        ASSERT_TRUE(page_address(own)) << own;
        EXPECT_TRUE(page_address(own)->loopback) << own;
    }
    for (const char *wide : {"0.0.0.0:80", "192.0.2.7:80", "[::]:80", "[2001:db8::1]:80"}) {
        ASSERT_TRUE(page_address(wide)) << wide;
        EXPECT_FALSE(page_address(wide)->loopback) << wide;
    }
    for (const char *none : {"", ":80", "80", "127.0.0.1", "127.0.0.1:0", "127.0.0.1:65536", "host:80",
                             "::1:80", "[::1]", "127.0.0.1:80 "})
        EXPECT_FALSE(page_address(none)) << none;
}

TEST(ExampleConfiguration, HasNoFault)
{
    const Reading reading = read_config(NVREC_EXAMPLE);
    for (const Fault &fault : reading.faults)
        ADD_FAILURE() << fault.shown();
    EXPECT_EQ(reading.config.cameras.size(), 3u);
    Process check({NVREC_PROGRAM, "check", NVREC_EXAMPLE});
    EXPECT_EQ(check.wait(), 0) << check.errors;
    EXPECT_NE(check.output.find("no fault; 3 cameras"), std::string::npos) << check.output;
}

TEST_F(Configuration, APortIsANumberThatThereIs)
{
    for (const char *host : {"h:99999", "h:0", "h:", "h:55a", "[::1]:65536"})
        EXPECT_EQ(
            places(read("[[camera]]\nname = \"yard\"\nmain = \"rtsp://" + std::string(host) + "/x\"\n")),
            Texts{"3 camera[1].main"})
            << host;
    for (const char *host : {"h", "h:554", "[::1]", "[::1]:65535"})
        EXPECT_EQ(
            places(read("[[camera]]\nname = \"yard\"\nmain = \"rtsp://" + std::string(host) + "/x\"\n")),
            Texts{})
            << host;
}

TEST_F(Configuration, APageThatNeedsATokenIsNamedWithItsLine)
{
    EXPECT_EQ(places(read(std::string("[status]\nqr = false\npage = \"192.0.2.1:9310\"\n") + kOneCamera)),
              Texts{"3 status.page"});
}

TEST(CheckCommand, NamesAFileThatIsNotThere)
{
    ScratchDirectory scratch;
    std::ofstream(scratch.file("one.toml")) << "[[camera]]\nname = \"yard\"\nmain = \"yard.mp4\"\n";
    Process missing({NVREC_PROGRAM, "check", scratch.file("one.toml")});
    EXPECT_EQ(missing.wait(), 2);
    EXPECT_EQ(missing.errors, "nvrec: " + scratch.file("one.toml") + ":3: camera[1].main: there is no file " +
                                  scratch.file("yard.mp4") + "\n");
    std::ofstream(scratch.file("yard.mp4")) << "x";
    Process there({NVREC_PROGRAM, "check", scratch.file("one.toml")});
    EXPECT_EQ(there.wait(), 0) << there.errors;
    EXPECT_NE(there.output.find("no fault; 1 camera\n"), std::string::npos) << there.output;
}

TEST(CheckCommand, EndsWithTwoAndNamesTheFaults)
{
    ScratchDirectory scratch;
    std::ofstream(scratch.file("bad.toml")) << "[[camera]]\nnam = \"yard\"\nmain = \"x.mp4\"\n";
    Process check({NVREC_PROGRAM, "check", scratch.file("bad.toml")});
    EXPECT_EQ(check.wait(), 2);
    EXPECT_EQ(check.output, "");
    const std::string file = "nvrec: " + scratch.file("bad.toml");
    EXPECT_EQ(check.errors, file + ":1: camera[1].name: a camera needs one\n" + file +
                                ":2: camera[1].nam: there is no such key here; did you mean \"name\"?\n");
    Process run({NVREC_PROGRAM, "run", scratch.file("bad.toml")});
    EXPECT_EQ(run.wait(), 2) << "and nothing is started";
    EXPECT_EQ(run.errors, check.errors);
}

} // namespace
