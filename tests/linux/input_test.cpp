/* Nodes that are read, emulated: the receiver through the library, the mouse as an application reads it. */
#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>

#include "board_io.h"
#include "emulated_node.h"
#include "ir_driver.h"
#include "keyboard_driver.h"
#include "mouse_driver.h"
#include "nvrhal.h"

namespace
{

constexpr uint32_t kUntouched = 0xAAAAAAAA;

class LinuxReceiver : public testing::Test
{
protected:
    LinuxReceiver() { g_S32Irfd = board_open(IR_NODE, O_RDWR); }
    ~LinuxReceiver() override { board_close(g_S32Irfd); }

    LocalKey read_key()
    {
        LocalKey status = {};
        status.valid = status.code = kUntouched;
        EXPECT_EQ(local_irkey_status_get(&status), 0);
        return status;
    }

    EmulatedNode node{IR_NODE};
};

} // namespace

TEST_F(LinuxReceiver, GivesAFrameOnce)
{
    constexpr uint32_t kNoButtonsCode = 0x12345678;
    node.post(IrFrame{0, kNoButtonsCode, 0});
    EXPECT_EQ(read_key().valid, 0u); // a whole frame, of no button that the library knows
    EXPECT_EQ(read_key().valid, kUntouched);
}

TEST_F(LinuxReceiver, GivesNothingOfAFrameThatIsNotAPress)
{
    node.post(IrFrame{0, 0x12345678, 1});
    EXPECT_EQ(read_key().valid, kUntouched);
}

TEST_F(LinuxReceiver, GivesNothingWhenTheReadFails)
{
    node.post(IrFrame{0, 0x12345678, 0});
    node.fail_reads(EIO);
    EXPECT_EQ(read_key().valid, kUntouched);
    IrFrame frame = {kUntouched, kUntouched, kUntouched};
    errno = 0;
    EXPECT_EQ(board_read(g_S32Irfd, &frame, sizeof frame), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(frame.code, kUntouched);
}

TEST(LinuxMouse, GivesEventsWholeAndInTheirOrder)
{
    EmulatedNode node(MOUSE_NODE);
    const int mouse = board_open(MOUSE_NODE, O_RDWR);
    node.post(MouseEvent{MOUSE_EVENT_MOVE, 0, 100, -5, 0});
    node.post(MouseEvent{MOUSE_EVENT_WHEEL, MOUSE_BUTTON_LEFT, 100, -5, -1});
    MouseEvent event = {};
    EXPECT_EQ(board_read(mouse, &event, sizeof event), static_cast<int>(sizeof event));
    EXPECT_EQ(event.type, static_cast<uint32_t>(MOUSE_EVENT_MOVE));
    EXPECT_EQ(event.y, -5);
    EXPECT_EQ(board_read(mouse, &event, sizeof event), static_cast<int>(sizeof event));
    EXPECT_EQ(event.wheel, -1);
    EXPECT_EQ(board_read(mouse, &event, sizeof event), 0);
    board_close(mouse);
}

TEST(LinuxMouse, RefusesABufferThatIsTooSmall)
{
    EmulatedNode node(MOUSE_NODE);
    const int mouse = board_open(MOUSE_NODE, O_RDWR);
    node.post(MouseEvent{MOUSE_EVENT_MOVE, 0, 1, 2, 0});
    char few[4];
    errno = 0;
    EXPECT_EQ(board_read(mouse, few, sizeof few), -1);
    EXPECT_EQ(errno, EINVAL);
    board_close(mouse);
}

TEST(LinuxPanel, IsToldByPointer)
{
    uint32_t told = kUntouched;
    const EmulatedNode node(KEYBOARD_NODE, [&](const NodeRequest &request) {
        if (request.code() != KEYBOARD_RECORD_LAMP) return -ENOTTY;
        told = request.record<uint32_t>();
        return 0;
    });
    const int panel = board_open(KEYBOARD_NODE, O_RDONLY);
    uint32_t lit = 1;
    EXPECT_EQ(board_ioctl(panel, KEYBOARD_RECORD_LAMP, &lit), 0);
    EXPECT_EQ(told, 1u);
    board_close(panel);
}
