/* example_test.cpp - runs the README's example on a frame and looks at the picture that it leaves. */
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "stamp.h"

namespace
{

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

struct ClosePipe {
    void operator()(FILE *pipe) const { pclose(pipe); }
};

// The picture's brightness, one byte a pixel, as another program reads the file.
std::vector<uint8_t> luma_of(const std::string &png)
{
    const std::string command = "ffmpeg -nostdin -v error -i " + png + " -pix_fmt gray -f rawvideo -";
    const std::unique_ptr<FILE, ClosePipe> pipe(popen(command.c_str(), "r"));
    std::vector<uint8_t> luma(size_t{kWidth} * kHeight + 1);
    luma.resize(pipe != nullptr ? fread(luma.data(), 1, luma.size(), pipe.get()) : 0);
    return luma;
}

TEST(Example, LeavesThePictureOfItsFrame)
{
    const std::string folder = testing::TempDir() + "example_" + std::to_string(getpid());
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    EXPECT_EQ(system(("cd " + folder + " && " EXAMPLE " " EXAMPLE_FRAME " >log").c_str()), 0);
    const std::vector<uint8_t> luma = luma_of(folder + "/screen.png");
    EXPECT_EQ(system(("rm -r " + folder).c_str()), 0);

    ASSERT_EQ(luma.size(), size_t{kWidth} * kHeight);
    const auto stamp = stamp::read(luma.data(), kWidth, kWidth, kHeight);
    ASSERT_TRUE(stamp);
    EXPECT_EQ(*stamp, (stamp::Stamp{42, 4711}));
    EXPECT_GT(luma.back(), 40); // the pane reaches the lower right corner, where black would be 0
}

} // namespace
