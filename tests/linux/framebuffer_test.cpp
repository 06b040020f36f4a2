/* The library's framebuffer on the real system calls: what it draws is in the node's memory. */
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "framebuffer_file.h"
#include "nvrhal.h"

namespace
{

constexpr uint32_t kRed = 0xFFFF0000;
constexpr uint16_t kRed1555 = 0xFC00;
constexpr uint32_t kBlue = 0xFF0000FF;
constexpr uint16_t kBlue1555 = 0x801F;

int set_up()
{
    return fb_init(0, FramebufferFile::kWidth, FramebufferFile::kHeight);
}

bool is_open(int descriptor)
{
    return fcntl(descriptor, F_GETFD) != -1;
}

} // namespace

TEST(LinuxFramebuffer, IsClearedToItsLastByte)
{
    const FramebufferFile node;
    EXPECT_EQ(node.memory().front(), FramebufferFile::kPowerOnByte);
    ASSERT_EQ(set_up(), 0);
    EXPECT_EQ(node.memory(), std::string(FramebufferFile::kMemoryBytes, '\0'));
}

TEST(LinuxFramebuffer, ShowsWhatIsDrawnWithoutAnyFurtherCall)
{
    const FramebufferFile node;
    ASSERT_EQ(set_up(), 0);
    drawRect(10, 20, 30, 40, kRed);
    EXPECT_EQ(node.pixel(10, 20), kRed1555);
    EXPECT_EQ(node.pixel(39, 59), kRed1555);
    for (const auto &[x, y] : {std::pair{9u, 20u}, {40u, 20u}, {10u, 19u}, {10u, 60u}})
        EXPECT_EQ(node.pixel(x, y), 0) << x << "," << y;
}

TEST(LinuxFramebuffer, ShowsWhatTheApplicationWritesIntoTheMapping)
{
    const FramebufferFile node;
    ASSERT_EQ(set_up(), 0);
    ASSERT_EQ(g_osd_info.mapped_length, FramebufferFile::kMemoryBytes);
    static_cast<uint8_t *>(g_osd_info.mapped_address)[FramebufferFile::kMemoryBytes - 1] = 0x5A;
    EXPECT_EQ(node.memory().back(), 0x5A);
}

TEST(LinuxFramebuffer, TellsTheDriverPlaceFormatColourKeyAndBlending)
{
    const FramebufferFile node;
    ASSERT_EQ(set_up(), 0);
    EXPECT_EQ(node.layer.dst_width, FramebufferFile::kWidth);
    EXPECT_EQ(node.layer.display_height, FramebufferFile::kHeight);
    EXPECT_EQ(node.layer.color_format, static_cast<uint32_t>(FB_COLOR_ARGB1555));
    EXPECT_EQ(node.shown, 1);
    EXPECT_EQ(node.key.enabled, 1);
    EXPECT_EQ(node.alpha.per_pixel, 1);
    EXPECT_EQ(node.alpha.global_alpha, 255);
}

TEST(LinuxFramebuffer, PansAtTheEndOfAJobAndPassesTheRefusalOn)
{
    FramebufferFile node;
    ASSERT_EQ(set_up(), 0);
    const int before = node.pans;
    EXPECT_EQ(ext_tde_end_job(), 0);
    EXPECT_EQ(node.pans, before + 1);
    node.refuse(FBIOPAN_DISPLAY);
    EXPECT_EQ(ext_tde_end_job(), -1);
}

TEST(LinuxFramebuffer, KeepsTheOldMappingOverASecondSetUp)
{
    const FramebufferFile node;
    ASSERT_EQ(set_up(), 0);
    auto *const old = static_cast<uint16_t *>(g_osd_info.mapped_address);
    ASSERT_EQ(set_up(), 0);
    EXPECT_NE(g_osd_info.mapped_address, old);
    old[0] = kBlue1555;
    EXPECT_EQ(node.pixel(0, 0), kBlue1555);
    drawRect(1, 0, 1, 1, kBlue);
    EXPECT_EQ(old[1], kBlue1555);
}

TEST(LinuxFramebuffer, IsDoneWithoutWhenThereIsNone)
{
    EXPECT_EQ(set_up(), 0);
    EXPECT_EQ(g_osd_info.descriptor, -1);
    EXPECT_EQ(ext_tde_begin_job(), -1);
}

TEST(LinuxFramebuffer, FailsWhenTheNodeCannotBeMapped)
{
    FramebufferFile node;
    node.say_memory(0);
    EXPECT_EQ(set_up(), -1);
    EXPECT_EQ(g_osd_info.descriptor, -1);
    EXPECT_EQ(node.memory(), std::string(FramebufferFile::kMemoryBytes, FramebufferFile::kPowerOnByte));
}

// The descriptor is the lowest free one, so that the next opening tells whether it was closed.
TEST(LinuxFramebuffer, ClosesAndUnmapsWhenTheDriverRefuses)
{
    for (const unsigned long request :
         {static_cast<unsigned long>(FBIOSET_SHOW), static_cast<unsigned long>(FBIOGET_COLORKEY),
          static_cast<unsigned long>(FBIOSET_GLOBAL_ALPHA)}) {
        FramebufferFile node;
        node.refuse(request);
        const int next = open("/", O_RDONLY);
        close(next);
        EXPECT_EQ(set_up(), -1);
        EXPECT_EQ(g_osd_info.descriptor, -1);
        EXPECT_EQ(g_osd_info.mapped_address, nullptr);
        EXPECT_FALSE(is_open(next));
    }
}
