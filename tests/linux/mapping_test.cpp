/* board_map and board_unmap on ordinary files. */
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "board_io.h"
#include "scratch_folder.h"

namespace
{

class Mapping : public testing::Test
{
protected:
    Mapping()
    {
        path = folder.file("memory", std::string(size, 'm'));
        descriptor = board_open(path.c_str(), O_RDWR);
    }
    ~Mapping() override { board_close(descriptor); }

    char *map() const { return static_cast<char *>(board_map(descriptor, size)); }

    /** The system can read there: it refuses to send what it cannot. */
    static bool is_mapped(const void *address)
    {
        int ends[2];
        if (pipe(ends) != 0) return false;
        const bool could_read = write(ends[1], address, 1) == 1;
        close(ends[0]);
        close(ends[1]);
        return could_read;
    }

    const size_t size = 4 * static_cast<size_t>(sysconf(_SC_PAGESIZE));
    ScratchFolder folder;
    std::string path;
    int descriptor = -1;
};

} // namespace

TEST_F(Mapping, IsTheNodesMemoryFromItsBeginning)
{
    const std::string bytes = "begin" + std::string(size - 8, '.') + "end";
    const int other = board_open(folder.file("other", bytes).c_str(), O_RDWR);
    auto *mapped = static_cast<char *>(board_map(other, size));
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(std::string(mapped, size), bytes);
    EXPECT_EQ(board_unmap(mapped, size), 0);
    board_close(other);
}

TEST_F(Mapping, IsSharedWithTheNode)
{
    char *mapped = map();
    ASSERT_NE(mapped, nullptr);
    memcpy(mapped + size - 4, "drew", 4);
    EXPECT_EQ(bytes_of(path).substr(size - 4), "drew");
    EXPECT_EQ(pwrite(descriptor, "node", 4, 100), 4);
    EXPECT_EQ(std::string(mapped + 100, 4), "node");
    EXPECT_EQ(board_unmap(mapped, size), 0);
}

TEST_F(Mapping, IsSharedWithOtherMappings)
{
    char *one = map();
    char *other = map();
    ASSERT_NE(one, nullptr);
    ASSERT_NE(other, nullptr);
    EXPECT_NE(one, other);
    one[7] = 'x';
    EXPECT_EQ(other[7], 'x');
    EXPECT_EQ(board_unmap(one, size), 0);
    other[8] = 'y'; // the other one stays
    EXPECT_EQ(bytes_of(path).substr(7, 2), "xy");
    EXPECT_EQ(board_unmap(other, size), 0);
}

TEST_F(Mapping, StaysWhenTheDescriptorIsClosed)
{
    char *mapped = map();
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(board_close(descriptor), 0);
    mapped[0] = 'x';
    EXPECT_EQ(bytes_of(path)[0], 'x');
    EXPECT_EQ(board_unmap(mapped, size), 0);
    descriptor = board_open(path.c_str(), O_RDWR);
}

TEST_F(Mapping, IsNullOnFailureAndSaysWhy)
{
    errno = 0;
    EXPECT_EQ(board_map(descriptor, 0), nullptr);
    EXPECT_EQ(errno, EINVAL);
    const int read_only = board_open(path.c_str(), O_RDONLY);
    EXPECT_EQ(board_map(read_only, size), nullptr); // it is to be writable
    EXPECT_EQ(errno, EACCES);
    board_close(read_only);
    EXPECT_EQ(board_map(read_only, size), nullptr);
    EXPECT_EQ(errno, EBADF);
    int pipe_ends[2];
    ASSERT_EQ(pipe(pipe_ends), 0);
    EXPECT_EQ(board_map(pipe_ends[0], size), nullptr); // a node without memory
    close(pipe_ends[0]);
    close(pipe_ends[1]);
}

TEST_F(Mapping, EndsWithItsUnmapping)
{
    char *mapped = map();
    ASSERT_TRUE(is_mapped(mapped));
    EXPECT_EQ(board_unmap(mapped, size), 0);
    EXPECT_FALSE(is_mapped(mapped));
}

TEST_F(Mapping, IsNotEndedAtAnAddressThatNoneBeginsAt)
{
    char *mapped = map();
    errno = 0;
    EXPECT_EQ(board_unmap(mapped + 1, size), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_TRUE(is_mapped(mapped));
    EXPECT_EQ(board_unmap(mapped, 0), -1);
    EXPECT_TRUE(is_mapped(mapped));
    EXPECT_EQ(board_unmap(mapped, size), 0);
}
