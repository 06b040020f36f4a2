/* nodes_test.cpp - device nodes that a program opens by itself, with the system's own calls. */
#include "driven.h"

#include <gtest/gtest.h>

namespace
{

constexpr char kMenuKey[] = "4 6d000000"; // key code 109

class Nodes : public testing::Test
{
protected:
    std::string open(const std::string &path) { return program.tell("open " + path); }
    void ok(const std::string &name, const json &with = json::object())
    {
        const json answer = program.ask(name, with);
        EXPECT_TRUE(answer.contains("ok")) << name << ": " << answer;
    }
    size_t known_nodes() { return program.ask("state")["ok"]["nodes"].size(); }

    Driven program;
};

} // namespace

TEST_F(Nodes, EachOfTheBoardsCanBeOpened)
{
    for (const char *path : {"/dev/fb0", "/dev/watchdog", "/dev/rtc0", "/dev/ms_gpio", "/dev/KeyBoard",
                             "/dev/Hi_IR", "/dev/mouse", "/dev/vc0725dev"}) {
        const std::string descriptor = open(path);
        EXPECT_NE(descriptor.front(), '-') << path;
        const json nodes = program.ask("state")["ok"]["nodes"];
        ASSERT_EQ(nodes.size(), 1u) << path;
        EXPECT_EQ(nodes[0]["path"], path);
        EXPECT_EQ(std::to_string(nodes[0]["descriptor"].get<int>()), descriptor);
        EXPECT_EQ(program.tell("close " + descriptor), "0");
        EXPECT_EQ(known_nodes(), 0u);
    }
}

TEST_F(Nodes, EverythingElseIsTheSystems)
{
    EXPECT_EQ(open("/dev/nothing"), "-1 ENOENT");
    const std::string file = open("/dev/zero");
    EXPECT_EQ(program.tell("read " + file + " 4"), "4 00000000");
    EXPECT_EQ(program.tell("write " + file), "1");
    EXPECT_EQ(program.tell("ioctl other " + file), "-1 ENOTTY");
    EXPECT_EQ(program.tell("map_private " + file + " 4096"), "90");
    EXPECT_EQ(program.tell("unmap 4096"), "0");
    EXPECT_EQ(program.tell("close " + file), "0");
    EXPECT_EQ(program.tell("close " + file), "-1 EBADF");
    EXPECT_EQ(program.tell("read " + file + " 4"), "-1 EBADF");
    EXPECT_EQ(known_nodes(), 0u);
}

TEST_F(Nodes, KeysAreReadAndWaitedFor)
{
    const std::string panel = open("/dev/KeyBoard");
    EXPECT_EQ(program.tell("read " + panel + " 64"), "0");
    for (const std::string way : {"poll", "select", "epoll"}) {
        EXPECT_EQ(program.tell(way + " " + panel + " 0"), "0");
        ok("panel", {{"key", "menu"}});
        ok("panel", {{"key", "menu"}});
        EXPECT_EQ(program.tell(way + " " + panel + " 5000"), "1");
        EXPECT_EQ(program.tell("read " + panel + " 64"), kMenuKey);
        EXPECT_EQ(program.tell(way + " " + panel + " 0"), "1"); // the second one
        EXPECT_EQ(program.tell("readv " + panel + " 64"), kMenuKey);
        EXPECT_EQ(program.tell(way + " " + panel + " 0"), "0");
    }
    program.say("epoll " + panel + " 10000"); // it waits first, and is woken
    ok("panel", {{"key", "menu"}});
    EXPECT_EQ(program.read_line(), "1");
    EXPECT_EQ(program.tell("read " + panel + " 3"), "-1 EINVAL"); // as board_read says
}

TEST_F(Nodes, AReadWaitsAsTheBoardsDoesAndDoesNotWhenItMustNot)
{
    ok("clock.take");
    const std::string mouse = open("/dev/mouse");
    program.say("read " + mouse + " 64");
    ok("wait.sleepers", {{"count", 1}});
    ok("clock.step", {{"by", 100000}});
    EXPECT_EQ(program.read_line(), "0"); // nothing came within the board's patience
    EXPECT_EQ(program.tell("nonblock " + mouse + " 1"), "0");
    EXPECT_EQ(program.tell("read " + mouse + " 64"), "-1 EAGAIN");
    ok("mouse", {{"x", 7}, {"y", -2}});
    EXPECT_EQ(program.tell("read " + mouse + " 64"), "20 010000000000000007000000feffffff00000000");
    EXPECT_EQ(program.tell("read " + mouse + " 64"), "-1 EAGAIN");
    const std::string receiver = open("/dev/Hi_IR n");
    EXPECT_EQ(program.tell("read " + receiver + " 12"), "-1 EAGAIN");
    ok("press", {{"button", "menu"}});
    EXPECT_EQ(program.tell("read " + receiver + " 12"), "12 0000000000ff9a6500000000");
    EXPECT_EQ(program.tell("read " + receiver + " 12"), "12 0000000000ff9a6501000000"); // let go
    EXPECT_EQ(program.tell("read " + receiver + " 12"), "-1 EAGAIN");
}

TEST_F(Nodes, EachOpeningGetsEveryEventAndDuplicatesShareOne)
{
    const std::string one = open("/dev/KeyBoard"), two = open("/dev/KeyBoard @e");
    const std::string copy = program.tell("dup " + one);
    const std::string high = program.tell("dupfd " + one + " 100");
    EXPECT_EQ(high, "100");
    EXPECT_EQ(program.tell("dup2 " + one + " 200"), "200");
    EXPECT_EQ(known_nodes(), 5u);
    ok("panel", {{"key", "menu"}});
    EXPECT_EQ(program.tell("poll " + copy + " 0"), "1");
    EXPECT_EQ(program.tell("close " + one), "0");
    EXPECT_EQ(program.tell("read 200 4"), kMenuKey);
    EXPECT_EQ(program.tell("read " + copy + " 4"), "0");
    EXPECT_EQ(program.tell("poll 100 0"), "0");
    EXPECT_EQ(program.tell("read " + two + " 4"), kMenuKey);
    // The number of a node is taken by another file, and the other way round.
    const std::string null = open("/dev/zero");
    EXPECT_EQ(program.tell("dup2 " + null + " 200"), "200");
    EXPECT_EQ(program.tell("read 200 2"), "2 0000");
    EXPECT_EQ(program.tell("dup2 " + two + " " + null), null);
    EXPECT_EQ(program.tell("read " + null + " 4"), "0");
    EXPECT_EQ(program.tell("close_range 3 300"), "0");
    EXPECT_EQ(known_nodes(), 0u);
    EXPECT_EQ(program.tell("read " + two + " 4"), "-1 EBADF");
}

TEST_F(Nodes, TheWatchdogIsFedByWritingAndByRequests)
{
    ok("clock.take");
    const std::string watchdog = open("/dev/watchdog");
    EXPECT_EQ(program.tell("ioctl seconds " + watchdog + " 5"), "0");
    EXPECT_EQ(program.tell("ioctl enable " + watchdog), "0");
    ok("clock.step", {{"by", 4000000}});
    EXPECT_EQ(program.tell("write " + watchdog), "1");
    EXPECT_EQ(program.ask("state")["ok"]["watchdog"]["remaining_us"], 5000000);
    ok("clock.step", {{"by", 1000000}});
    EXPECT_EQ(program.tell("ioctl signed " + watchdog), "0");
    EXPECT_EQ(program.ask("state")["ok"]["watchdog"]["feeds"], 2);
    EXPECT_EQ(program.ask("state")["ok"]["watchdog"]["remaining_us"], 5000000);
    EXPECT_EQ(program.tell("ioctl seconds " + watchdog + " 0"), "-1 EINVAL");
    EXPECT_EQ(program.tell("ioctl other " + watchdog), "-1 ENOTTY");
}

TEST_F(Nodes, RequestsReachThePanelTheClockAndNobodyTakesWrites)
{
    const std::string panel = open("/dev/KeyBoard"), clock = open("/dev/rtc0");
    EXPECT_EQ(program.tell("ioctl lamp " + panel + " 1"), "0");
    EXPECT_EQ(program.ask("state")["ok"]["panel"]["record_lamp"], true);
    ok("rtc", {{"seconds", 1000000000}}); // in 2001
    EXPECT_EQ(program.tell("ioctl year " + clock), "2001");
    EXPECT_EQ(program.tell("write " + panel), "-1 EINVAL");
    EXPECT_EQ(program.tell("write " + clock), "-1 EINVAL");
    ok("rtc", {{"battery", "fail"}});
    EXPECT_EQ(program.tell("ioctl year " + clock), "-1 EINVAL");
}

TEST_F(Nodes, TheFramebuffersMemoryIsMapped)
{
    const std::string framebuffer = open("/dev/fb0");
    EXPECT_EQ(program.tell("map " + framebuffer + " 8294400"), "90");
    EXPECT_EQ(program.tell("close " + framebuffer), "0"); // the mapping stays
    EXPECT_EQ(program.tell("unmap 4096"), "-1 EINVAL");   // only as a whole
    EXPECT_EQ(program.tell("unmap 8294400"), "0");
    const std::string again = open("/dev/fb0");
    EXPECT_EQ(program.tell("map_private " + again + " 4096"), "-1 EINVAL");
    EXPECT_EQ(program.tell("map " + again + " 1000000000"), "-1 EINVAL");
    const std::string panel = open("/dev/KeyBoard");
    EXPECT_EQ(program.tell("map " + panel + " 4096").substr(0, 2), "-1");
}

TEST_F(Nodes, AFaultOfTheBoardIsAnErrorOfTheSystem)
{
    ok("fault", {{"call", "board_open"}});
    EXPECT_EQ(open("/dev/KeyBoard"), "-1 EIO");
    const std::string panel = open("/dev/KeyBoard");
    ok("fault", {{"call", "board_ioctl"}});
    EXPECT_EQ(program.tell("ioctl lamp " + panel + " 1"), "-1 EIO");
    ok("fault", {{"call", "board_read"}});
    EXPECT_EQ(program.tell("read " + panel + " 4"), "-1 EIO");
    ok("panel", {{"key", "menu"}});
    EXPECT_EQ(program.tell("read " + panel + " 4"), kMenuKey);
}

TEST_F(Nodes, AForkedChildHasDescriptorsAndNoBoard)
{
    const std::string panel = open("/dev/KeyBoard");
    ok("panel", {{"key", "menu"}});
    program.say("fork " + panel);
    EXPECT_EQ(program.read_line(), "-1 ENODEV"); // read
    EXPECT_EQ(program.read_line(), "-1 ENODEV"); // ioctl
    EXPECT_EQ(program.read_line(), "-1 ENODEV"); // open, and not the PC's watchdog
    EXPECT_EQ(program.read_line(), "0");         // close
    EXPECT_EQ(program.read_line(), "0");         // another file has its number
    EXPECT_EQ(program.read_line(), "0");         // and is read as what it is
    EXPECT_EQ(program.read_line(), "child 0");
    EXPECT_EQ(program.tell("read " + panel + " 4"), kMenuKey); // the parent goes on
    EXPECT_EQ(known_nodes(), 1u);
}

TEST_F(Nodes, ADescriptorThatWentBehindTheLibrarysBackIsNotMistaken)
{
    const std::string panel = open("/dev/KeyBoard");
    EXPECT_EQ(program.tell("behind " + panel), panel); // fclose, and /dev/null has its number
    EXPECT_EQ(program.tell("read " + panel + " 4"), "0");
    EXPECT_EQ(program.tell("write " + panel), "1");
    EXPECT_EQ(known_nodes(), 0u);
}

TEST_F(Nodes, NodesGoOnWhenNobodyLooksAnyMore)
{
    const std::string watchdog = open("/dev/watchdog");
    program.close_channel();
    EXPECT_EQ(program.tell("write " + watchdog), "1");
    EXPECT_NE(open("/dev/mouse").front(), '-');
}
