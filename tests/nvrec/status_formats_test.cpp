/* The recorder's status as a table, as JSON and for Prometheus; the words of requests; who may see it. */
#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "controls/control_requests.h"
#include "controls/status.h"
#include "controls/status_page.h"
#include "exposition.h"

namespace
{

using namespace nvrec;
using nvrec_test::Exposition;

RecorderStatus two_cameras()
{
    RecorderStatus status;
    status.version = "1.0";
    status.library = "1.0";
    status.at_us = 1'790'000'000'000'000;
    status.up_s = 12;
    CameraLine yard;
    yard.name = "yard \"1\" \\ a";
    yard.address = "rtsp://***@192.0.2.7/s";
    yard.status.state = CameraState::kSilent;
    yard.status.since_wall_us = 1'789'999'990'000'000;
    yard.status.bit_rate_bps = 4e6;
    yard.status.last_error = "cannot open: Connection refused";
    yard.sent = 100;
    yard.decoder = host::DecoderCounters{80, 70, 10, 3, 2, 100};
    yard.backlog = host::DecoderBacklog{5, 4096};
    RecordingStatus recording;
    recording.stream = "main";
    recording.state = RecordingState::kRuns;
    recording.written = 99;
    recording.bytes = 12345678;
    yard.recordings = {recording};
    CameraLine door;
    door.channel = 1;
    door.name = "\xff not UTF-8";
    status.cameras = {yard, door};
    DiskStatus disk;
    disk.state = DiskState::kHangs;
    disk.since_s = 3;
    disk.trouble = "/rec does not answer";
    status.disk = disk;
    ArchiveStatus archive;
    archive.free_bytes = 1'800'000'000;
    archive.limit_bytes = 500'000'000'000;
    status.archive = archive;
    status.disk_left_s = 3600;
    status.board = {{"line", "28 buzzer", "high"}, {"watchdog", "state", "disabled"}};
    return status;
}

TEST(StatusFormats, FramesThatResetsThrewAwayAreCounted)
{
    EXPECT_EQ((host::DecoderCounters{80, 70, 10, 3, 2, 100}.discarded({5, 4096})), 12u);
    EXPECT_EQ((host::DecoderCounters{80, 70, 10, 3, 2, 80}.discarded({5, 4096})), 0u) << "never below none";
}

TEST(StatusFormats, ForPrometheusAreWellFormedWhateverTheNames)
{
    const std::string text = status_metrics(two_cameras());
    EXPECT_EQ(Exposition::problem(text), "") << text;
    const char *lines[] = {
        "nvrec_build_info{version=\"1.0\",library=\"1.0\"} 1\n",
        "nvrec_camera_state{camera=\"yard \\\"1\\\" \\\\ a\",channel=\"0\",state=\"silent\"} 1\n",
        "nvrec_camera_up{camera=\"yard \\\"1\\\" \\\\ a\",channel=\"0\"} 0\n",
        "nvrec_decoder_frames_discarded_total{camera=\"yard \\\"1\\\" \\\\ a\",channel=\"0\"} 12\n",
        "nvrec_disk_up 0\n",
        "nvrec_disk_left_seconds 3600\n",
        ("nvrec_camera_last_error{camera=\"yard \\\"1\\\" \\\\ a\",channel=\"0\",error=\"cannot open: "
         "Connection refused\"} 1\n"),
        "nvrec_retention_up 1\n",
        "nvrec_board_line_level{line=\"28 buzzer\"} 1\n",
    };
    for (const char *line : lines)
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
}

TEST(StatusFormats, AMainStreamThatIsLostBehindItsSubStreamIsTold)
{
    RecorderStatus status = two_cameras();
    CameraStatus &yard = status.cameras[0].status;
    const std::string labels = "camera=\"yard \\\"1\\\" \\\\ a\",channel=\"0\"";
    yard.state = CameraState::kLive;
    EXPECT_EQ(status_metrics(status).find("nvrec_camera_main_stream_up{"), std::string::npos);
    EXPECT_NE(status_json(status).find("\"main_state\": null"), std::string::npos);
    yard.sub_stream = true;
    yard.main_state = CameraState::kLive;
    EXPECT_EQ(status_table(status).find("sub, main"), std::string::npos);
    yard.main_state = CameraState::kSilent;
    EXPECT_NE(status_table(status).find("sub, main silent"), std::string::npos) << status_table(status);
    EXPECT_NE(status_json(status).find("\"main_state\": \"silent\""), std::string::npos);
    const std::string page = status_metrics(status);
    EXPECT_EQ(Exposition::problem(page), "") << page;
    EXPECT_NE(page.find("nvrec_camera_main_stream_up{" + labels + "} 0\n"), std::string::npos) << page;

    const Clock::time_point now = Clock::now();
    EXPECT_TRUE(yard.main_is_lost(now));
    yard.main_state = CameraState::kConnecting;
    yard.main_since = now - kSilentAfter;
    EXPECT_TRUE(yard.main_is_lost(now));
    yard.main_since = now - std::chrono::seconds(1);
    EXPECT_FALSE(yard.main_is_lost(now)) << "it may come yet";
}

TEST(StatusFormats, TheReaderOfThisTestIsStrict)
{
    for (const char *bad :
         {"", "x 1", "x 1\n", "# TYPE x gauge\nx 1\n", "# HELP x a b\n# TYPE x counter\nx 1\n",
          "# HELP x a b\n# TYPE x gauge\nx 1\nx 1\n", "# HELP x a b\n# TYPE x gauge\nx{a=\"\\z\"} 1\n",
          "# HELP x a b\n# TYPE x gauge\nx one\n", "# HELP x a b\n# TYPE x gauge\nx{a=\"b} 1\n"})
        EXPECT_NE(Exposition::problem(bad), "") << bad;
    EXPECT_EQ(Exposition::problem("# HELP x a b\n# TYPE x gauge\nx{a=\"b\",c=\"\\\\\"} 1.5\n"), "");
}

TEST(StatusFormats, TheTableNamesWhatIsWrong)
{
    const std::string text = status_table(two_cameras());
    for (const char *word : {"silent", "Connection refused", "hangs for 3 s: /rec does not answer",
                             "1.8 GB, 1.0 hours at this rate", "500.0 GB", "28 buzzer", "discarded"})
        EXPECT_NE(text.find(word), std::string::npos) << word << "\n" << text;
}

TEST(ControlWords, TakeQuotes)
{
    using Words = std::vector<std::string>;
    EXPECT_EQ(request_words("event  \"front door\" a b\r"), (Words{"event", "front door", "a", "b"}));
    EXPECT_EQ(request_words(R"(event "a\"b\\" "")"), (Words{"event", "a\"b\\", ""}));
    EXPECT_EQ(request_words(""), Words{});
    EXPECT_FALSE(request_words("event \"front"));
    for (const char *name : {"plain", "a b", "\"", "\\", "门", ""})
        EXPECT_EQ(request_words(request_word(name)), Words{name});
}

TEST(StatusPageToken, IsWantedWhereThereIsOne)
{
    const StatusPage open({"127.0.0.1", 80, false, ""}, {});
    for (const char *own : {"127.0.0.1:80", "localhost", "localhost:80", "[::1]:80"})
        EXPECT_TRUE(open.admits(own, "", "")) << own;
    for (const char *other : {"", "example.org", "example.org:80", "localhost.example.org", "[::2]:80", "[",
                              "127.example.org", "127.0.0.1.example.org:80", "128.0.0.1", "127.1"})
        EXPECT_FALSE(open.admits(other, "", "")) << other << ": a web page that leads here by its own name";
    const StatusPage closed({"0.0.0.0", 80, false, "0123456789abcdef"}, {});
    EXPECT_TRUE(closed.admits("example.org", "Bearer 0123456789abcdef", ""));
    EXPECT_TRUE(closed.admits("", "", "0123456789abcdef"));
    for (const char *wrong :
         {"", "Bearer ", "0123456789abcdef", "Bearer 0123456789abcde", "Bearer 0123456789abcdeF"})
        EXPECT_FALSE(closed.admits("localhost", wrong, "")) << wrong;
}

} // namespace
