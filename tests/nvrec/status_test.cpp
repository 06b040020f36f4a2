/* The status of a running recorder: over the socket, HTTP and the commands, and to the service manager. */
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "controls/control_socket.h"
#include "exposition.h"
#include "nvrec_run.h"

namespace
{

using namespace nvrec;
using nvrec_test::Exposition;

constexpr const char *kSecret = "hunter2-is-secret";

/* The recorder run by a file, with one camera that is a file and one that is never there. */
class StatusOfARecorder : public testing::Test
{
protected:
    ScratchDirectory scratch_;
    int port_ = 0;

    std::string file(const std::string &name) const { return scratch_.file(name); }

    void write_config(const std::string &cameras, const std::string &more = "") const
    {
        const bool with_gone = cameras.find(gone()) != std::string::npos;
        std::ofstream(file("secrets.toml"))
            << (with_gone ? "[camera.gone]\nuser = \"admin\"\npassword = \"" + std::string(kSecret) + "\"\n"
                          : "");
        chmod(file("secrets.toml").c_str(), 0600);
        std::ofstream(file("nvrec.toml"))
            << "secrets = \"secrets.toml\"\n[screen]\nwindow = \"off\"\n[control]\nsocket = \"socket\"\n"
            << "[log]\nfile = \"log\"\n[board]\nchannels = 3\nwatchdog = 0\n[status]\npage = \"127.0.0.1:"
            << port_ << "\"\n"
            << more << cameras;
    }

    static std::string yard()
    {
        return std::string("[[camera]]\nname = \"yard\"\nmain = \"") + NVREC_CLIP + "\"\nloop = true\n";
    }
    static std::string gone() { return "[[camera]]\nname = \"gone\"\nmain = \"rtsp://127.0.0.1:1/x\"\n"; }

    void SetUp() override
    {
        const int probe = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        ASSERT_EQ(bind(probe, reinterpret_cast<sockaddr *>(&address), size), 0);
        ASSERT_EQ(getsockname(probe, reinterpret_cast<sockaddr *>(&address), &size), 0);
        port_ = ntohs(address.sin_port);
        close(probe);
    }

    /* Wait until it answers. */
    bool answers() const
    {
        for (int i = 0; i < 200; ++i) {
            const auto reply = ask_recorder(file("socket"), "status");
            if (reply && reply->ok) return true;
            usleep(50'000);
        }
        return false;
    }

    std::string http(const std::string &request) const
    {
        const int connection = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<uint16_t>(port_));
        EXPECT_EQ(connect(connection, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        EXPECT_EQ(send(connection, request.data(), request.size(), 0), static_cast<ssize_t>(request.size()));
        std::string text;
        char bytes[4096];
        for (ssize_t count = 0; (count = recv(connection, bytes, sizeof bytes, 0)) > 0;)
            text.append(bytes, static_cast<size_t>(count));
        close(connection);
        return text;
    }

    std::string get(const std::string &path) const
    {
        return http("GET " + path + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
    }

    std::string command(const std::vector<std::string> &words, int status) const
    {
        std::vector<std::string> all = {NVREC_PROGRAM};
        all.insert(all.end(), words.begin(), words.end());
        all.insert(all.end(), {"--control", file("socket")});
        Process process(all);
        EXPECT_EQ(process.wait(), status) << process.errors;
        return process.output + process.errors;
    }
};

TEST_F(StatusOfARecorder, IsToldEverywhereAndHoldsNoPassword)
{
    write_config(yard() + gone());
    Process recorder({NVREC_PROGRAM, "run", file("nvrec.toml"), "--json", file("report")});
    ASSERT_TRUE(answers());
    std::string everything;
    const std::string table = command({"status"}, 0);
    EXPECT_NE(table.find("yard"), std::string::npos) << table;
    EXPECT_NE(table.find("refused"), std::string::npos) << "why the other one is not there: " << table;
    const std::string json = command({"status", "--json"}, 0);
    EXPECT_NE(json.find("\"name\": \"gone\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"rtsp://127.0.0.1:1/x\""), std::string::npos) << json;
    const std::string page = get("/metrics");
    EXPECT_NE(page.find("text/plain; version=0.0.4"), std::string::npos) << page;
    const size_t body = page.find("\r\n\r\n");
    ASSERT_NE(body, std::string::npos);
    EXPECT_EQ(Exposition::problem(page.substr(body + 4)), "") << page;
    EXPECT_NE(page.find("nvrec_camera_up{camera=\"yard\",channel=\"0\"} 1\n"), std::string::npos) << page;
    EXPECT_NE(get("/").find("200 OK"), std::string::npos);
    EXPECT_NE(get("/none").find(" 404 "), std::string::npos);
    EXPECT_NE(http("POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 0\r\nConnection: close\r\n\r\n")
                  .find(" 405 "),
              std::string::npos);
    EXPECT_NE(http("GET / HTTP/1.1\r\nHost: example.org\r\nConnection: close\r\n\r\n").find(" 401 "),
              std::string::npos);
    const std::string help = ask_recorder(file("socket"), "help")->text;
    for (const char *form : {"key NAME", "board", "status [json]", "metrics", "event CAMERA", "reload"})
        EXPECT_NE(help.find(form), std::string::npos) << help;
    Process check({NVREC_PROGRAM, "check", file("nvrec.toml")});
    EXPECT_EQ(check.wait(), 0);
    everything =
        table + json + page + get("/") + get("/json") + command({"event", "gone", "x"}, 4) + check.output;
    recorder.signal(SIGTERM);
    recorder.wait();
    everything += recorder.output + recorder.errors + file_text(file("log")) + file_text(file("report"));
    EXPECT_EQ(everything.find(kSecret), std::string::npos) << everything;
    EXPECT_NE(file_text(file("log")).find(" error: channel 1 (gone): "), std::string::npos)
        << "with time and level";
    struct stat log;
    ASSERT_EQ(stat(file("log").c_str(), &log), 0);
    EXPECT_EQ(log.st_mode & 0777, 0640u);
}

/* The number of a metric's line, -1 = there is no such line. */
double metric(const std::string &page, const std::string &line)
{
    const size_t at = page.find("\n" + line + " ");
    return at == std::string::npos ? -1 : std::strtod(page.c_str() + at + line.size() + 2, nullptr);
}

TEST_F(StatusOfARecorder, AChangedFileIsTakenUpAndNoFrameOfOthersIsLost)
{
    const std::string record = "[record]\ndirectory = \"rec\"\n";
    const std::string door = std::string("[[camera]]\nname = \"door\"\nmain = \"") + NVREC_CLIP + "\"\n";
    write_config(yard() + gone(), record);
    Process recorder({NVREC_PROGRAM, "run", file("nvrec.toml"), "--json", file("report")});
    ASSERT_TRUE(answers());
    EXPECT_NE(command({"reload"}, 0).find("nothing has changed"), std::string::npos);

    write_config(yard() + gone() + door, record);
    EXPECT_EQ(command({"reload"}, 0), "camera \"door\": added as channel 2\n");
    const std::string up = "nvrec_camera_up{camera=\"door\",channel=\"2\"}";
    for (int i = 0; i < 100 && metric(get("/metrics"), up) != 1; ++i)
        usleep(50'000);
    EXPECT_EQ(metric(get("/metrics"), up), 1);

    write_config(yard() + "nam = 3\n", record);
    const std::string fault = command({"reload"}, 4);
    EXPECT_NE(fault.find("did you mean \"name\"?"), std::string::npos) << fault;
    EXPECT_NE(fault.find("nothing was taken up"), std::string::npos) << fault;
    EXPECT_NE(get("/metrics").find("camera=\"gone\""), std::string::npos) << "nor was it";

    write_config(
        yard() + door +
            "[[camera]]\nname = \"a\"\nmain = \"a.mp4\"\n[[camera]]\nname = \"b\"\nmain = \"b.mp4\"\n",
        record);
    std::string text = file_text(file("nvrec.toml"));
    text.replace(text.find("channels = 3"), 12, "channels = 4");
    std::ofstream(file("nvrec.toml")) << text;
    const std::string more = command({"reload"}, 0);
    EXPECT_NE(more.find("camera \"gone\": removed\n"), std::string::npos) << more;
    EXPECT_NE(more.find("camera \"a\": added as channel 1\n"), std::string::npos) << more;
    EXPECT_NE(more.find("camera \"b\": there is no channel left for it (board.channels): needs a restart\n"),
              std::string::npos)
        << more;
    EXPECT_NE(more.find("board: needs a restart\n"), std::string::npos) << more;

    write_config(yard(), record);
    recorder.signal(SIGHUP);
    for (int i = 0; i < 100 && file_text(file("log")).find("camera \"door\": removed") == std::string::npos;
         ++i)
        usleep(50'000);
    EXPECT_NE(file_text(file("log")).find("info: configuration: camera \"door\": removed"),
              std::string::npos);

    recorder.signal(SIGTERM);
    recorder.wait();
    const std::string report = file_text(file("report"));
    const std::string recordings = report.substr(report.find("\"recordings\""));
    EXPECT_GT(reported(recordings, 0, "stored"), 20);
    EXPECT_EQ(reported(recordings, 0, "written"), reported(recordings, 0, "stored")) << report;
    EXPECT_EQ(reported(recordings, 0, "lost"), 0);
    EXPECT_EQ(reported(recordings, 0, "skipped"), 0);

    Process list({NVREC_PROGRAM, "list", "--dir", file("rec")});
    EXPECT_EQ(list.wait(), 0) << list.errors;
    EXPECT_NE(list.output.find("door"), std::string::npos) << "the index knows its name: " << list.output;
}

TEST_F(StatusOfARecorder, AnEventFromOutsideIsRecorded)
{
    write_config(yard() + "[camera.record]\nmode = \"event\"\nbefore = 1\nafter = 2\n" + gone(),
                 "[record]\ndirectory = \"rec\"\n[retention]\nsize = \"1 GB\"\n");
    Process recorder({NVREC_PROGRAM, "run", file("nvrec.toml"), "--json", file("report")});
    ASSERT_TRUE(answers());
    const std::string runs = "nvrec_recording_running{camera=\"yard\",channel=\"0\",stream=\"main\"}";
    EXPECT_EQ(metric(get("/metrics"), runs), 0) << "nothing has happened";
    EXPECT_EQ(command({"event", "yard", "a \"knock\""}, 0), "");
    EXPECT_NE(command({"event", "garden"}, 4).find("there is no camera \"garden\""), std::string::npos);
    for (int i = 0; i < 100 && metric(get("/metrics"), runs) != 1; ++i)
        usleep(50'000);
    EXPECT_EQ(metric(get("/metrics"), runs), 1);
    EXPECT_NE(command({"status"}, 0).find("runs, event"), std::string::npos);
    for (int i = 0; i < 120 && metric(get("/metrics"), runs) != 0; ++i)
        usleep(50'000);
    EXPECT_EQ(metric(get("/metrics"), runs), 0) << "two seconds behind it";
    EXPECT_GT(metric(get("/metrics"), "nvrec_disk_free_bytes"), 0);
    EXPECT_NE(command({"status"}, 0).find("1.0 GB"), std::string::npos) << "what is kept";
    recorder.signal(SIGTERM);
    recorder.wait();
    const std::string report = file_text(file("report"));
    const std::string recordings = report.substr(report.find("\"recordings\""));
    EXPECT_GT(reported(recordings, 0, "written"), 30) << report;
}

TEST_F(StatusOfARecorder, HangingUpEndsTheOtherCommandsInOrder)
{
    Process recorder({NVREC_PROGRAM, "record", "--window", "off", "--log", file("log"), "--control",
                      file("socket"), "--dir", file("rec"), "--loop", NVREC_CLIP});
    ASSERT_TRUE(answers());
    EXPECT_NE(command({"reload"}, 4).find("not started by \"nvrec run\""), std::string::npos);
    recorder.signal(SIGHUP);
    recorder.signal(SIGHUP); /* a terminal that goes away sends several */
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors;
    EXPECT_NE(recorder.output.find("written"), std::string::npos) << "its closing table: " << recorder.output;
}

TEST_F(StatusOfARecorder, QuietRecordersPrintNothingAndTheLogIsBegunAnewByItsSize)
{
    std::ofstream(file("nvrec.toml")) << "[screen]\nwindow = \"off\"\n[control]\nsocket = \"socket\"\n[log]\n"
                                      << "file = \"log\"\nsize = \"1 kB\"\nkeep = 2\n"
                                      << yard();
    Process recorder({NVREC_PROGRAM, "run", file("nvrec.toml"), "--quiet"});
    ASSERT_TRUE(answers());
    for (int i = 0; i < 5; ++i) {
        recorder.signal(SIGHUP);
        usleep(100'000);
    }
    recorder.signal(SIGTERM);
    EXPECT_EQ(recorder.wait(), 0);
    EXPECT_EQ(recorder.output, "");
    struct stat found;
    EXPECT_EQ(stat(file("log.1").c_str(), &found), 0);
    EXPECT_NE(stat(file("log.3").c_str(), &found), 0) << "two are kept";
    const std::string logs = file_text(file("log")) + file_text(file("log.1")) + file_text(file("log.2"));
    EXPECT_NE(logs.find(" info: configuration: nothing has changed\n"), std::string::npos) << logs;
}

TEST_F(StatusOfARecorder, TheServiceManagerHearsThatItStandsLivesReloadsAndEnds)
{
    const int manager = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, file("notify").c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(bind(manager, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    const timeval limit = {20, 0};
    setsockopt(manager, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    setenv("NOTIFY_SOCKET", file("notify").c_str(), 1);
    setenv("WATCHDOG_USEC", "2000000", 1);
    write_config(yard());
    Process recorder({NVREC_PROGRAM, "run", file("nvrec.toml")});
    unsetenv("NOTIFY_SOCKET");
    unsetenv("WATCHDOG_USEC");
    const auto hears = [manager](const std::string &wanted) {
        char bytes[256];
        for (ssize_t count = 0; (count = recv(manager, bytes, sizeof bytes, 0)) > 0;) {
            if (std::string(bytes, static_cast<size_t>(count)).starts_with(wanted)) return true;
        }
        return false;
    };
    EXPECT_TRUE(hears("READY=1"));
    EXPECT_TRUE(hears("WATCHDOG=1")) << "with the board's own watchdog switched off, too";
    EXPECT_TRUE(hears("WATCHDOG=1"));
    recorder.signal(SIGHUP);
    EXPECT_TRUE(hears("RELOADING=1"));
    EXPECT_TRUE(hears("READY=1"));
    recorder.signal(SIGTERM);
    EXPECT_TRUE(hears("STOPPING=1"));
    EXPECT_EQ(recorder.wait(), 0) << recorder.errors;
    close(manager);
}

TEST(Version, IsThatOfRecorderAndLibrary)
{
    Process version({NVREC_PROGRAM, "--version"});
    EXPECT_EQ(version.wait(), 0);
    EXPECT_EQ(version.output, "nvrec " NVREC_VERSION ", libnvrhal " NVREC_VERSION "\n");
}

} // namespace
