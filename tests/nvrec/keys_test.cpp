/*
 * "nvrec key" and "nvrec board" as a user runs them beside a running "nvrec wall". A key command
 * returns when the recorder has acted on the key, so what follows sees its effect.
 */
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "nvrec_run.h"

namespace
{

std::string clip(const std::string &name)
{
    return std::string(NVREC_CLIPS) + "/" + name;
}

/* The state that a line of "nvrec board" tells; empty without such a line. */
std::string state_of(const std::string &table, const std::string &device, const std::string &item)
{
    for (size_t at = 0; at < table.size();) {
        const size_t end = std::min(table.find('\n', at), table.size());
        const std::string line = table.substr(at, end - at);
        at = end + 1;
        const size_t item_at = line.find_first_not_of(' ', device.size());
        if (!line.starts_with(device + " ") || item_at == std::string::npos) continue;
        if (line.compare(item_at, item.size() + 2, item + "  ") != 0) continue;
        return line.substr(line.find_first_not_of(' ', item_at + item.size()));
    }
    return {};
}

class NvrecKeys : public testing::Test
{
protected:
    /* A wall that runs until it is told to end; its standard output carries its errors too. */
    std::unique_ptr<Process> wall(const std::vector<std::string> &arguments) const
    {
        std::vector<std::string> command = {"sh", "-c", "exec \"$@\" 2>&1", "sh", NVREC_PROGRAM, "wall"};
        for (const std::string &word : {std::string("--window"), std::string("off"), std::string("--log"),
                                        scratch_.file("log"), std::string("--control"), socket_})
            command.push_back(word);
        command.insert(command.end(), arguments.begin(), arguments.end());
        return std::make_unique<Process>(command);
    }

    /* Four looped cameras in a 2x2 layout, whose socket answers. */
    std::unique_ptr<Process> running_wall()
    {
        auto process =
            wall({"--loop", "--layout", "2x2", "-p", scratch_.file("first.png") + ",0.1",
                  clip("colour0.h264"), clip("colour1.h264"), clip("colour2.h264"), clip("colour3.h264")});
        EXPECT_TRUE(scratch_.wait_for("first.png"));
        return process;
    }

    int run(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), NVREC_PROGRAM);
        arguments.insert(arguments.end(), {"--control", socket_});
        Process process(arguments);
        const int status = process.wait();
        output_ = process.output;
        errors_ = process.errors;
        return status;
    }

    std::string board(const std::string &device, const std::string &item)
    {
        EXPECT_EQ(run({"board"}), 0) << errors_;
        return state_of(output_, device, item);
    }

    /* Read the wall's lines until one has this in it. */
    static bool wait_for_line(Process &process, const std::string &part)
    {
        for (;;) {
            const size_t before = process.output.size();
            if (process.read_line().find(part) != std::string::npos) return true;
            if (process.output.size() == before) return false; /* its end */
        }
    }

    ScratchDirectory scratch_;
    std::string socket_ = scratch_.file("socket");
    std::string output_, errors_;
};

TEST_F(NvrecKeys, AKeyOfTheRemoteOrThePanelChangesTheRunningWall)
{
    auto process = running_wall();
    EXPECT_EQ(board("wall", "layout"), "2x2");
    EXPECT_EQ(board("wall", "selected"), "channel 0");

    EXPECT_EQ(run({"key", "right"}), 0) << errors_;
    EXPECT_EQ(board("wall", "selected"), "channel 1");
    EXPECT_EQ(run({"key", "down", "--panel"}), 0) << errors_;
    EXPECT_EQ(board("wall", "selected"), "channel 3");
    EXPECT_EQ(run({"key", "enter"}), 0) << errors_;
    EXPECT_EQ(board("wall", "whole screen"), "channel 3");
    EXPECT_EQ(run({"key", "Back"}), 0) << errors_;
    EXPECT_EQ(board("wall", "whole screen"), "the layout");
    EXPECT_EQ(run({"key", "layout"}), 0) << errors_;
    EXPECT_EQ(board("wall", "layout"), "1+5");
    EXPECT_NE(board("panel", "keys").find("4 taken"), std::string::npos)
        << "the panel is told of the remote's keys alone: " << output_;

    process->signal(SIGINT);
    EXPECT_EQ(process->wait(), 0) << process->output;
}

/* The lamp is lit steadily while nothing records. */
TEST_F(NvrecKeys, TheRecordKeyDoesNothingYet)
{
    auto process = running_wall();
    const auto wall_rows = [this] {
        EXPECT_EQ(run({"board"}), 0) << errors_;
        const size_t end = output_.find("\nline ");
        return output_.substr(0, end) + "\n" + state_of(output_, "lamp", "record");
    };
    const std::string before = wall_rows();
    EXPECT_NE(before.find("records"), std::string::npos) << before;
    EXPECT_EQ(run({"key", "record"}), 0) << errors_;
    EXPECT_EQ(run({"key", "record", "--panel"}), 0) << errors_;
    EXPECT_EQ(wall_rows(), before);
    EXPECT_EQ(state_of(output_, "wall", "records"), "no");
    process->signal(SIGINT);
    EXPECT_EQ(process->wait(), 0) << process->output;
}

TEST_F(NvrecKeys, TheBoardOfARunningRecorderIsToldAsATable)
{
    auto process = running_wall();
    ASSERT_EQ(run({"board"}), 0) << errors_;
    EXPECT_TRUE(output_.starts_with("the board of the recorder that listens at " + socket_ + "\n"));
    EXPECT_EQ(state_of(output_, "line", "25 Wi-Fi power"), "low");
    EXPECT_EQ(state_of(output_, "line", "28 buzzer"), "low") << "silenced at the start";
    EXPECT_EQ(state_of(output_, "line", "90 disk LED"), "high");
    EXPECT_NE(state_of(output_, "lamp", "record"), "");
    EXPECT_TRUE(state_of(output_, "watchdog", "state").starts_with("enabled, ")) << output_;
    EXPECT_TRUE(state_of(output_, "clock", "time").ends_with(" UTC")) << output_;
    EXPECT_EQ(state_of(output_, "chips", "inputs of 0"), "0 signal, 1 signal, 2 signal, 3 signal");
    EXPECT_EQ(state_of(output_, "monitor", "plug"), "plugged in");
    EXPECT_EQ(state_of(output_, "monitor", "signal"), "yes");
    EXPECT_EQ(state_of(output_, "wall", "window"), "none");
    EXPECT_EQ(state_of(output_, "wall", "cameras"), "4");
    process->signal(SIGINT);
    EXPECT_EQ(process->wait(), 0) << process->output;
    EXPECT_NE(file_text(scratch_.file("log")).find("nvrec: the clock reads "), std::string::npos);
}

TEST_F(NvrecKeys, WithoutARecorderTheBoardIsStartedForTheTable)
{
    ASSERT_EQ(run({"board", "--log", scratch_.file("board.log")}), 0) << errors_;
    EXPECT_TRUE(output_.starts_with("a freshly started board; no recorder listens at " + socket_ + "\n"));
    EXPECT_EQ(state_of(output_, "line", "28 buzzer"), "high") << "as start-up leaves it";
    EXPECT_TRUE(state_of(output_, "watchdog", "state").starts_with("enabled, ")) << output_;
    EXPECT_EQ(state_of(output_, "wall", "layout"), "");
}

TEST_F(NvrecKeys, KeysThatCannotBePressedAreErrors)
{
    EXPECT_EQ(run({"key", "menu"}), 4);
    EXPECT_NE(errors_.find("no recorder listens at " + socket_), std::string::npos) << errors_;
    EXPECT_EQ(run({"key", "menue"}), 2);
    EXPECT_EQ(run({"key"}), 2);
}

TEST_F(NvrecKeys, ASecondRecorderAtTheSamePlaceSaysSo)
{
    auto process = running_wall();
    Process second({NVREC_PROGRAM, "wall", "--window", "off", "--log", scratch_.file("log2"), "--control",
                    socket_, clip("colour0.h264")});
    EXPECT_EQ(second.wait(), 4);
    EXPECT_NE(second.errors.find("another recorder listens there"), std::string::npos) << second.errors;
    EXPECT_EQ(board("wall", "layout"), "2x2") << "the first one goes on";
    process->signal(SIGINT);
    EXPECT_EQ(process->wait(), 0) << process->output;
}

TEST_F(NvrecKeys, ASecondRecorderWithoutAPlaceOfItsOwnGoesOnWithoutASocket)
{
    setenv("XDG_RUNTIME_DIR", scratch_.path().c_str(), 1);
    socket_ = scratch_.file("nvrec.socket");
    auto process = running_wall();
    Process second({NVREC_PROGRAM, "wall", "--window", "off", "--log", scratch_.file("log2"),
                    "--as-fast-as-can", clip("colour0.h264")});
    EXPECT_EQ(second.wait(), 0);
    EXPECT_NE(second.errors.find("another recorder listens there"), std::string::npos) << second.errors;
    process->signal(SIGINT);
    EXPECT_EQ(process->wait(), 0) << process->output;
}

TEST_F(NvrecKeys, ACameraWhoseThreadHangsSoundsTheBuzzerAndStarvesTheWatchdog)
{
    /* A camera that stops in the middle of a read: a pipe whose writer writes no more. */
    const std::string pipe = scratch_.file("camera.h264");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    auto process = wall({"--as-fast-as-can", "--watchdog", "6", "--hung-after", "1", pipe});
    std::ofstream camera(pipe, std::ios::binary);
    const std::string stream = file_text(clip("colour0.h264"));
    for (int i = 0; i < 20; ++i)
        camera << stream;
    camera.flush();

    ASSERT_TRUE(wait_for_line(*process, "watchdog: the thread of channel 0 hangs")) << process->output;
    ASSERT_TRUE(wait_for_line(*process, "channel 0: its video is lost")) << process->output;
    EXPECT_EQ(board("line", "28 buzzer"), "high") << output_;
    ASSERT_TRUE(wait_for_line(*process, "watchdog: it has expired")) << process->output;
    EXPECT_TRUE(board("watchdog", "state").starts_with("expired ")) << output_;

    camera.close();
    EXPECT_EQ(process->wait(), 0) << process->output;
}

} // namespace
