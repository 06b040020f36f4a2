/* board_open, board_close, board_read and board_ioctl on ordinary files and pipes. */
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "board_io.h"
#include "scratch_folder.h"

namespace
{

constexpr char kMissing[] = "/dev/no-such-node-of-a-recorder";

/** A descriptor that was open a moment ago. */
int closed_descriptor()
{
    const int descriptor = board_open("/", O_RDONLY);
    board_close(descriptor);
    return descriptor;
}

struct Pipe {
    int ends[2] = {-1, -1};
    Pipe() { EXPECT_EQ(pipe(ends), 0); }
    ~Pipe()
    {
        close(ends[0]);
        close(ends[1]);
    }
};

} // namespace

TEST(BoardOpen, GivesADescriptorThatIsNotZero)
{
    const ScratchFolder folder;
    const int descriptor = board_open(folder.file("node", "x").c_str(), O_RDWR);
    EXPECT_GE(descriptor, 1);
    EXPECT_EQ(board_close(descriptor), 0);
}

TEST(BoardOpen, HandsTheFlagsOn)
{
    const ScratchFolder folder;
    const std::string path = folder.file("node", "x");
    for (const int flags : {O_RDONLY, O_RDWR, O_RDWR | O_SYNC}) {
        const int descriptor = board_open(path.c_str(), flags);
        const int kept = fcntl(descriptor, F_GETFL);
        EXPECT_EQ(kept & (O_ACCMODE | O_SYNC), flags);
        EXPECT_EQ(board_close(descriptor), 0);
    }
}

TEST(BoardOpen, OpensANodeSeveralTimesWithAPlaceOfReadingEach)
{
    const ScratchFolder folder;
    const std::string path = folder.file("node", "ab");
    const int one = board_open(path.c_str(), O_RDONLY);
    const int other = board_open(path.c_str(), O_RDONLY);
    EXPECT_NE(one, other);
    char first = 0, again = 0;
    EXPECT_EQ(board_read(one, &first, 1), 1);
    EXPECT_EQ(board_read(other, &again, 1), 1);
    EXPECT_EQ(first, 'a');
    EXPECT_EQ(again, 'a');
    board_close(one);
    board_close(other);
}

TEST(BoardOpen, MakesAFileThatOnlyItsOwnerWritesWhenItIsToCreateOne)
{
    const ScratchFolder folder;
    const mode_t before = umask(0);
    const int descriptor = board_open(folder.path("made").c_str(), O_RDWR | O_SYNC | O_CREAT);
    umask(before);
    ASSERT_GE(descriptor, 1);
    struct stat made = {};
    EXPECT_EQ(fstat(descriptor, &made), 0);
    EXPECT_EQ(made.st_mode & 07777, 0644u);
    board_close(descriptor);
}

TEST(BoardOpen, RefusesAMissingNodeAndSaysWhy)
{
    errno = 0;
    EXPECT_EQ(board_open(kMissing, O_RDWR), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(BoardClose, ClosesOnce)
{
    const ScratchFolder folder;
    const int descriptor = board_open(folder.file("node", "x").c_str(), O_RDWR);
    EXPECT_EQ(board_close(descriptor), 0);
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
    errno = 0;
    EXPECT_EQ(board_close(descriptor), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST(BoardRead, GivesWhatThereIsThenNothing)
{
    const ScratchFolder folder;
    const int descriptor = board_open(folder.file("node", "0123456789").c_str(), O_RDONLY);
    char buffer[8] = {};
    EXPECT_EQ(board_read(descriptor, buffer, sizeof buffer), 8);
    EXPECT_EQ(std::string(buffer, 8), "01234567");
    EXPECT_EQ(board_read(descriptor, buffer, sizeof buffer), 2);
    EXPECT_EQ(std::string(buffer, 8), "89234567"); // what is not read stays as it was
    EXPECT_EQ(board_read(descriptor, buffer, sizeof buffer), 0);
    board_close(descriptor);
}

TEST(BoardRead, WaitsForTheNode)
{
    const Pipe node;
    const auto begin = std::chrono::steady_clock::now();
    std::thread presser([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(write(node.ends[1], "key", 3), 3);
    });
    char buffer[4] = {};
    EXPECT_EQ(board_read(node.ends[0], buffer, sizeof buffer), 3);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(40));
    EXPECT_STREQ(buffer, "key");
    presser.join();
}

TEST(BoardRead, FailsWithTheSystemsReason)
{
    char buffer[4];
    errno = 0;
    EXPECT_EQ(board_read(closed_descriptor(), buffer, sizeof buffer), -1);
    EXPECT_EQ(errno, EBADF);
    const int folder = board_open("/", O_RDONLY);
    EXPECT_EQ(board_read(folder, buffer, sizeof buffer), -1);
    EXPECT_EQ(errno, EISDIR);
    board_close(folder);
}

TEST(BoardIoctl, FillsTheRecordItIsGiven)
{
    const Pipe node;
    EXPECT_EQ(write(node.ends[1], "12345", 5), 5);
    int waiting = 0;
    EXPECT_EQ(board_ioctl(node.ends[0], FIONREAD, &waiting), 0);
    EXPECT_EQ(waiting, 5);
}

TEST(BoardIoctl, ReadsTheRecordItIsGiven)
{
    const Pipe node;
    int on = 1;
    EXPECT_EQ(board_ioctl(node.ends[0], FIONBIO, &on), 0);
    EXPECT_NE(fcntl(node.ends[0], F_GETFL) & O_NONBLOCK, 0);
}

TEST(BoardIoctl, FailsWithTheSystemsReason)
{
    const ScratchFolder folder;
    const int descriptor = board_open(folder.file("node", "x").c_str(), O_RDWR);
    winsize record = {}; // a file is no terminal
    errno = 0;
    EXPECT_EQ(board_ioctl(descriptor, TIOCGWINSZ, &record), -1);
    EXPECT_EQ(errno, ENOTTY);
    board_close(descriptor);
    EXPECT_EQ(board_ioctl(descriptor, TIOCGWINSZ, &record), -1);
    EXPECT_EQ(errno, EBADF);
}
