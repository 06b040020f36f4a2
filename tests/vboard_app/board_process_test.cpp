/* board_process_test.cpp - a program on the board: its start, its end, requests, power, reboot. */
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "board/board_process.h"

namespace
{

using namespace std::chrono_literals;
using nlohmann::json;
using vboard_app::BoardOptions;
using vboard_app::BoardProcess;
using vboard_app::Ending;
using vboard_app::RequestError;
using vboard_app::StartError;

/* What the program prints, line by line. */
class Lines
{
public:
    void add(bool is_error, const std::string &line)
    {
        std::lock_guard lock(mutex_);
        (is_error ? errors_ : lines_).push_back(line);
        changed_.notify_all();
    }

    /* The index-th line, from 0; empty: it does not come. */
    std::string line(size_t index)
    {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, 20s, [&] { return lines_.size() > index; });
        return index < lines_.size() ? lines_[index] : "";
    }

    std::vector<std::string> errors()
    {
        std::lock_guard lock(mutex_);
        return errors_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> lines_, errors_;
};

class BoardProcessTest : public testing::Test
{
protected:
    BoardOptions options(std::vector<std::string> arguments)
    {
        BoardOptions chosen;
        chosen.program = std::move(arguments);
        chosen.program.insert(chosen.program.begin(), ANY_PROGRAM);
        chosen.agent = FAKE_AGENT;
        chosen.folder = folder.string();
        chosen.output = [this](bool is_error, const std::string &line) { lines.add(is_error, line); };
        return chosen;
    }

    void SetUp() override { std::filesystem::create_directories(folder); }
    void TearDown() override { std::filesystem::remove_all(folder); }

    static std::string code_of(BoardProcess &board, const std::string &request,
                               const json &with = json::object())
    {
        try {
            board.request(request, with);
        } catch (const RequestError &error) {
            return error.code;
        }
        return "";
    }

    /* Open files of this process that a program inherits. */
    static int inherited_files()
    {
        int count = 0;
        for (int number = 0; number < 1024; ++number) {
            const int flags = fcntl(number, F_GETFD);
            if (flags >= 0 && (flags & FD_CLOEXEC) == 0) ++count;
        }
        return count;
    }

    Lines lines;
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("board_process_" + std::to_string(getpid()));
};

TEST_F(BoardProcessTest, ExitStatusIsTheProgramsOwn)
{
    BoardProcess board(options({"exit", "42"}));
    board.start();
    const Ending end = board.wait_ended(20s).value();
    EXPECT_EQ(end.how, Ending::How::exited);
    EXPECT_EQ(end.exit_status(), 42);
}

TEST_F(BoardProcessTest, SignalThatEndsTheProgramIsTold)
{
    BoardProcess board(options({"kill", "9"}));
    board.start();
    const Ending end = board.wait_ended(20s).value();
    EXPECT_EQ(end.how, Ending::How::signalled);
    EXPECT_EQ(end.status, SIGKILL);
    EXPECT_EQ(end.exit_status(), 137);
}

TEST_F(BoardProcessTest, MissingAndUnexecutableProgramsAreToldApart)
{
    BoardOptions missing = options({});
    missing.program = {"/nowhere/at/all"};
    try {
        BoardProcess(missing).start();
        FAIL();
    } catch (const StartError &error) {
        EXPECT_EQ(error.status, 127);
        EXPECT_STREQ(error.what(), "\"/nowhere/at/all\" is not found");
    }
    BoardOptions folder_for_program = options({});
    folder_for_program.program = {folder.string()};
    try {
        BoardProcess(folder_for_program).start();
        FAIL();
    } catch (const StartError &error) {
        EXPECT_EQ(error.status, 126);
    }
}

TEST_F(BoardProcessTest, ProgramWithoutTheBoardIsEndedWithOneLine)
{
    BoardOptions chosen = options({"print", "main"});
    chosen.environment = {"FAKE_AGENT=unlinked"};
    BoardProcess board(chosen);
    board.start();
    const Ending end = board.wait_ended(20s).value();
    EXPECT_EQ(end.how, Ending::How::not_linked);
    EXPECT_EQ(end.exit_status(), 125);
    EXPECT_EQ(end.message, std::string("\"") + ANY_PROGRAM + "\" is not linked with libvboard.so");
}

TEST_F(BoardProcessTest, OutputComesLineByLineAndEndsWithTheProgram)
{
    BoardProcess board(options({"print", "one", "complain", "two", "print", "three"}));
    board.start();
    board.wait_ended(20s);
    EXPECT_EQ(lines.line(0), "one");
    EXPECT_EQ(lines.line(1), "three");
    EXPECT_EQ(lines.errors(), std::vector<std::string>{"two"});
}

TEST_F(BoardProcessTest, ProgramSeesTheEnvironmentAndLimitsThatItWasGiven)
{
    setenv("LD_PRELOAD", "", 1);
    BoardOptions chosen = options({"environment", "files"});
    chosen.environment = {"ANY_PROGRAM=yes"};
    BoardProcess board(chosen);
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlim_t before = limit.rlim_cur;
    limit.rlim_cur = before - 10;
    setrlimit(RLIMIT_NOFILE, &limit);
    board.start();
    EXPECT_EQ(lines.line(0), "- - yes");
    EXPECT_EQ(lines.line(1),
              std::to_string(before) + " " + std::to_string(inherited_files() + 1)); // the channel
}

TEST_F(BoardProcessTest, RequestsAreCheckedAnsweredAndRefused)
{
    BoardProcess board(options({"wait"}));
    board.start();
    ASSERT_EQ(lines.line(0), "waits");
    const json answer = board.request("press", {{"button", "menu"}});
    EXPECT_EQ(answer.at("was").at("with"), json({{"button", "menu"}}));
    EXPECT_EQ(code_of(board, "press", {{"buton", "menu"}}), "bad_parameter");
    EXPECT_EQ(code_of(board, "pres"), "not_found");
    EXPECT_EQ(code_of(board, "hold", {{"button", "menu"}}), "refused");
    const json with = board.request("fault", {{"call", "MI_VDEC_StartChn"}}).at("was").at("with");
    EXPECT_EQ(with, json({{"call", "MI_VDEC_StartChn"}, {"nth", 1}, {"count", 1}, {"code", -1}}));
}

TEST_F(BoardProcessTest, PicturesComeWithTheirBytes)
{
    BoardProcess board(options({"wait"}));
    board.start();
    const vboard_app::Picture picture = board.picture();
    EXPECT_EQ(picture.width, 4u);
    EXPECT_EQ(picture.height, 2u);
    EXPECT_EQ(std::string(picture.bytes.begin(), picture.bytes.end()), "ABCDEFGHuuvv");
}

TEST_F(BoardProcessTest, FilesLieInTheFolderOnly)
{
    BoardProcess board(options({"wait"}));
    board.start();
    std::filesystem::create_symlink("/tmp", folder / "out");
    std::filesystem::create_symlink("/etc/passwd", folder / "link.txt");
    std::filesystem::create_directory(folder / "below");
    const json inside = board.request("trace.start", {{"file", "below/trace.txt"}});
    EXPECT_EQ(inside.at("was").at("with").at("file"),
              (std::filesystem::canonical(folder / "below") / "trace.txt").string());
    for (const char *file :
         {"../trace.txt", "/tmp/trace.txt", "out/trace.txt", "link.txt", "below/../../x", "out"})
        EXPECT_EQ(code_of(board, "trace.start", {{"file", file}}), "forbidden") << file;
    for (const char *file : {"missing/trace.txt", "below", "below/"})
        EXPECT_EQ(code_of(board, "trace.start", {{"file", file}}), "bad_parameter") << file;
}

TEST_F(BoardProcessTest, SignalsReachTheProgram)
{
    BoardProcess board(options({"wait", "exit", "3"}));
    board.start();
    ASSERT_EQ(lines.line(0), "waits");
    board.send_signal(SIGUSR1);
    EXPECT_EQ(lines.line(1), "signal " + std::to_string(SIGUSR1));
    EXPECT_EQ(board.wait_ended(20s)->exit_status(), 3);
    EXPECT_EQ(code_of(board, "state"), "power_off");
}

TEST_F(BoardProcessTest, WatchdogStartsTheProgramAgainWithItsReasonAndWhatLiesOutside)
{
    BoardProcess board(options({"boot", "wait"}));
    board.start();
    const json first = json::parse(lines.line(0)).at("with");
    EXPECT_EQ(first.at("boot_reason"), "power");
    EXPECT_EQ(first.at("monitor"), true);
    EXPECT_EQ(first.at("rtc"), nullptr);
    board.request("release", json::object());
    const json second = json::parse(lines.line(2)).at("with");
    EXPECT_EQ(second.at("boot_reason"), "watchdog");
    EXPECT_EQ(second.at("monitor"), false);
    EXPECT_EQ(second.at("rtc"), json({{"seconds", 1000}, {"at_wall_us", 7000000}}));
    EXPECT_EQ(second.at("analog"), json({{{"input", 3}, {"lost", true}, {"moving", 2}}}));
    ASSERT_EQ(lines.line(3), "waits");
    const json board_now = board.request("board", json::object());
    EXPECT_EQ(board_now.at("starts"), 2);
    EXPECT_EQ(board_now.at("boot_reason"), "watchdog");
    EXPECT_EQ(board_now.at("exit"), json({{"signal", SIGKILL}}));
}

TEST_F(BoardProcessTest, WithoutRebootTheWatchdogEndsTheBoard)
{
    BoardOptions chosen = options({"wait"});
    chosen.reboots = false;
    BoardProcess board(chosen);
    board.start();
    board.request("release", json::object());
    const Ending end = board.wait_ended(20s).value();
    EXPECT_EQ(end.how, Ending::How::watchdog);
    EXPECT_EQ(end.exit_status(), 124);
}

TEST_F(BoardProcessTest, PowerGoesAndComes)
{
    BoardProcess board(options({"boot", "wait"}));
    std::mutex mutex;
    std::vector<std::string> told;
    board.listen([&](const std::string &event, const json &data) {
        std::lock_guard lock(mutex);
        if (event == "board") told.push_back(data.at("power"));
    });
    board.start();
    ASSERT_EQ(lines.line(1), "waits");
    board.request("power", {{"to", "off"}});
    EXPECT_EQ(board.request("board", json::object()).at("pid"), nullptr);
    EXPECT_EQ(code_of(board, "press", {{"button", "menu"}}), "power_off");
    EXPECT_FALSE(board.wait_ended(0ms).has_value());
    board.request("power", {{"to", "on"}});
    EXPECT_EQ(json::parse(lines.line(2)).at("with").at("boot_reason"), "power");
    board.request("press", {{"button", "menu"}});
    board.request("power", {{"to", "cycle"}});
    EXPECT_EQ(board.request("board", json::object()).at("starts"), 3);
    board.stop();
    EXPECT_EQ(board.wait_ended()->how, Ending::How::stopped);
    std::lock_guard lock(mutex);
    EXPECT_EQ(told.front(), "on");
    EXPECT_EQ(told.back(), "off");
    EXPECT_NE(std::find(told.begin(), told.end() - 1, "off"), told.end() - 1);
}

TEST_F(BoardProcessTest, ProgramThatForksEndsWithItsOwnProcess)
{
    BoardProcess board(options({"fork", "exit", "5"}));
    board.start();
    EXPECT_EQ(board.wait_ended(1500ms).value_or(Ending{Ending::How::failed, 0, ""}).exit_status(), 5);
}

TEST_F(BoardProcessTest, ProgramThatBecomesAnotherOneLeavesTheBoard)
{
    BoardProcess board(options({"print", "here", "become", "sleep", "1"}));
    board.start();
    ASSERT_EQ(lines.line(0), "here");
    while (code_of(board, "state").empty())
        usleep(10000);
    EXPECT_EQ(code_of(board, "state"), "power_off");
    EXPECT_EQ(board.wait_ended(20s)->exit_status(), 0);
}

TEST_F(BoardProcessTest, BootCarriesWhatTheOptionsSay)
{
    BoardOptions chosen = options({"boot"});
    chosen.monitor_plugged = false;
    chosen.stepped = vboard_app::SteppedBoot{1, 2};
    chosen.step_pacing = true;
    chosen.line_buffered = true;
    chosen.faults = {{"board_open", 2, 0, -5}};
    BoardProcess board(chosen);
    board.start();
    const json with = json::parse(lines.line(0)).at("with");
    EXPECT_EQ(with.at("monitor"), false);
    EXPECT_EQ(with.at("stepped"), json({{"board_us", 1}, {"wall_us", 2}}));
    EXPECT_EQ(with.at("pacing"), "step");
    EXPECT_EQ(with.at("line_buffered"), true);
    EXPECT_EQ(with.at("faults"), json({{{"call", "board_open"}, {"nth", 2}, {"count", 0}, {"code", -5}}}));
}

} // namespace
