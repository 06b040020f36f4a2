/* board_io on a device node: what of a call reaches the driver, and what comes back. */
#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>

#include "ad_driver.h"
#include "board_io.h"
#include "emulated_node.h"
#include "gpio_driver.h"

namespace
{

class OpenedNode
{
public:
    explicit OpenedNode(const char *path) : descriptor(board_open(path, O_RDWR)) { EXPECT_GE(descriptor, 1); }
    ~OpenedNode() { board_close(descriptor); }
    const int descriptor;
};

} // namespace

TEST(DeviceNode, GetsEveryRequestsCodeAndValue)
{
    uint32_t code = 0;
    uintptr_t value = 0;
    const EmulatedNode node("/dev/nvrhal-test", [&](const NodeRequest &request) {
        code = request.code();
        value = request.value();
        return 0;
    });
    const OpenedNode opened("/dev/nvrhal-test");
    EXPECT_EQ(board_ioctl(opened.descriptor, 0x80045704, reinterpret_cast<void *>(2)), 0);
    EXPECT_EQ(code, 0x80045704u);
    EXPECT_EQ(value, 2u);
    EXPECT_EQ(board_ioctl(opened.descriptor, 0x6109, nullptr), 0);
    EXPECT_EQ(code, 0x6109u);
    EXPECT_EQ(value, 0u);
}

TEST(DeviceNode, GivesTheDriversResultOrItsError)
{
    const EmulatedNode node("/dev/nvrhal-test", [](const NodeRequest &request) {
        return request.code() == 1 ? 7 : request.code() == 2 ? -EINVAL : -ENOTTY;
    });
    const OpenedNode opened("/dev/nvrhal-test");
    EXPECT_EQ(board_ioctl(opened.descriptor, 1, nullptr), 7);
    errno = 0;
    EXPECT_EQ(board_ioctl(opened.descriptor, 2, nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(board_ioctl(opened.descriptor, 3, nullptr), -1);
    EXPECT_EQ(errno, ENOTTY);
}

// Some codes of the lines' driver say that the record is smaller than it is.
TEST(DeviceNode, GetsTheWholeRecordWhateverTheCodeSaysOfItsSize)
{
    GpioLine line = {};
    const EmulatedNode node(GPIO_NODE, [&](const NodeRequest &request) {
        line = request.record<GpioLine>();
        return 0;
    });
    const OpenedNode opened(GPIO_NODE);
    GpioLine wanted = {28, 1};
    EXPECT_EQ(board_ioctl(opened.descriptor, GPIO_DRIVE, &wanted), 0);
    EXPECT_EQ(line.line, 28u);
    EXPECT_EQ(line.value, 1u);
}

TEST(DeviceNode, FillsTheRecordOfTheCaller)
{
    const EmulatedNode node(AD_NODE, [](const NodeRequest &request) {
        if (request.code() != AD_GET_LOSS) return -ENOTTY;
        auto loss = request.record<AdVideoLoss>();
        loss.lost = loss.chip == 1 && loss.input == 2;
        request.fill(loss);
        return 0;
    });
    const OpenedNode opened(AD_NODE);
    AdVideoLoss there = {1, 2, 9};
    AdVideoLoss other = {1, 3, 9};
    EXPECT_EQ(board_ioctl(opened.descriptor, AD_GET_LOSS, &there), 0);
    EXPECT_EQ(board_ioctl(opened.descriptor, AD_GET_LOSS, &other), 0);
    EXPECT_EQ(there.lost, 1u);
    EXPECT_EQ(other.lost, 0u);
}

TEST(DeviceNode, GetsALargeRecordWhole)
{
    uint32_t sum = 0;
    const EmulatedNode node(AD_NODE, [&](const NodeRequest &request) {
        for (const uint8_t bits : request.record<AdMotionArea>().mask)
            sum += bits;
        return 0;
    });
    const OpenedNode opened(AD_NODE);
    AdMotionArea area = {0, 1, {}};
    area.mask[0] = 3;
    area.mask[AD_AREA_BYTES - 1] = 200;
    EXPECT_EQ(board_ioctl(opened.descriptor, AD_MOTION_SET_AREA, &area), 0);
    EXPECT_EQ(sum, 203u);
}

TEST(DeviceNode, IsNotReachedThroughAClosedDescriptor)
{
    int requests = 0;
    const EmulatedNode node("/dev/nvrhal-test", [&](const NodeRequest &) { return ++requests; });
    const int descriptor = board_open("/dev/nvrhal-test", O_RDWR);
    EXPECT_EQ(board_close(descriptor), 0);
    errno = 0;
    EXPECT_EQ(board_ioctl(descriptor, 1, nullptr), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(requests, 0);
}
