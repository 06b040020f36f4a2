/* board_run_command. */
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>
#include <unistd.h>

#include "board_io.h"
#include "scratch_folder.h"

TEST(BoardRunCommand, GivesTheExitStatus)
{
    EXPECT_EQ(board_run_command("true"), 0);
    EXPECT_EQ(board_run_command("exit 3"), 3);
    EXPECT_EQ(board_run_command("exit 255"), 255);
}

TEST(BoardRunCommand, GoesThroughTheShell)
{
    const ScratchFolder folder;
    const std::string command = "cd " + folder.path("") + " && echo loaded | tr a-z A-Z > driver";
    EXPECT_EQ(board_run_command(command.c_str()), 0);
    EXPECT_EQ(bytes_of(folder.path("driver")), "LOADED\n");
}

TEST(BoardRunCommand, WaitsForTheCommand)
{
    const ScratchFolder folder;
    const std::string done = folder.path("done");
    EXPECT_EQ(board_run_command(("sleep 0.1; echo > " + done).c_str()), 0);
    EXPECT_EQ(access(done.c_str(), F_OK), 0);
}

TEST(BoardRunCommand, IsTheShellsAnswerWhenThereIsNoSuchCommand)
{
    EXPECT_EQ(board_run_command("no-such-command-of-a-recorder 2>/dev/null"), 127);
}

TEST(BoardRunCommand, FailsWhenASignalEndedTheCommand)
{
    EXPECT_EQ(board_run_command("kill -KILL $$"), -1);
}

// A process that ignores its children's ends is told nothing of them.
TEST(BoardRunCommand, FailsWhenTheResultCannotBeHad)
{
    const auto before = signal(SIGCHLD, SIG_IGN);
    const int result = board_run_command("true");
    signal(SIGCHLD, before);
    EXPECT_EQ(result, -1);
}

TEST(BoardRunCommand, MayBeCalledByTwoThreads)
{
    int other = -1;
    std::thread thread([&] { other = board_run_command("sleep 0.05; exit 5"); });
    EXPECT_EQ(board_run_command("sleep 0.05; exit 6"), 6);
    thread.join();
    EXPECT_EQ(other, 5);
}
