/* key_names_test.cpp - keys and buttons pressed by name, and codes that no key has. */
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "board_io.h"
#include "ir_driver.h"
#include "keyboard_driver.h"
#include "nvrhal.h"
#include "panel_keys.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace
{

// The board's own table of the panel's keys holds the application's key codes.
struct PanelRow {
    std::string_view name;
    uint32_t code;
    bool operator==(const PanelRow &) const = default;
};
#define ROW(name, code) PanelRow{name, code},
constexpr PanelRow kPanelRows[] = {PANEL_KEYS(ROW)};
#undef ROW
constexpr PanelRow kKeyCodes[] = {
    {"zoom-out", KEY_CODE_ZOOM_OUT},
    {"stop", KEY_CODE_STOP},
    {"0", KEY_CODE_0},
    {"1", KEY_CODE_1},
    {"2", KEY_CODE_2},
    {"3", KEY_CODE_3},
    {"4", KEY_CODE_4},
    {"5", KEY_CODE_5},
    {"6", KEY_CODE_6},
    {"7", KEY_CODE_7},
    {"8", KEY_CODE_8},
    {"9", KEY_CODE_9},
    {"zoom", KEY_CODE_ZOOM},
    {"layout", KEY_CODE_LAYOUT},
    {"left", KEY_CODE_LEFT},
    {"next", KEY_CODE_NEXT},
    {"volume-down", KEY_CODE_VOLUME_DOWN},
    {"volume-up", KEY_CODE_VOLUME_UP},
    {"pause", KEY_CODE_PAUSE},
    {"zoom-in", KEY_CODE_ZOOM_IN},
    {"faster", KEY_CODE_FASTER},
    {"play", KEY_CODE_PLAY},
    {"enter", KEY_CODE_ENTER},
    {"up", KEY_CODE_UP},
    {"f5", KEY_CODE_F5},
    {"menu", KEY_CODE_MENU},
    {"mute", KEY_CODE_MUTE},
    {"snapshot", KEY_CODE_SNAPSHOT},
    {"back", KEY_CODE_BACK},
    {"f1", KEY_CODE_F1},
    {"f2", KEY_CODE_F2},
    {"f3", KEY_CODE_F3},
    {"f4", KEY_CODE_F4},
    {"record", KEY_CODE_RECORD},
    {"previous", KEY_CODE_PREVIOUS},
    {"down", KEY_CODE_DOWN},
    {"right", KEY_CODE_RIGHT},
};
static_assert(std::ranges::equal(kPanelRows, kKeyCodes));

class KeyNames : public testing::Test
{
protected:
    void SetUp() override { vboard_reset(); }
    void TearDown() override { vboard_reset(); }

    static std::string last_refusal()
    {
        char text[512];
        vboard_last_refusal(text, sizeof text);
        return text;
    }

    static uint32_t read_remote(int descriptor)
    {
        IrFrame frame = {};
        EXPECT_EQ(board_read(descriptor, &frame, sizeof frame), static_cast<int>(sizeof frame));
        return frame.code;
    }

    static uint32_t read_panel(int descriptor)
    {
        uint32_t code = 0;
        EXPECT_EQ(board_read(descriptor, &code, sizeof code), static_cast<int>(sizeof code));
        return code;
    }
};

TEST_F(KeyNames, PressTheButtonOfTheRemoteControl)
{
    const int remote = board_open(IR_NODE, 0);
    ASSERT_EQ(vboard_ir_press_named("menu"), 0);
    EXPECT_EQ(read_remote(remote), 0x659AFF00u);
    EXPECT_EQ(read_remote(remote), 0x659AFF00u); // let go
    ASSERT_EQ(vboard_ir_press_named("small-0"), 0);
    EXPECT_EQ(read_remote(remote), 0xFD027F80u);
}

TEST_F(KeyNames, PressTheKeyOfThePanel)
{
    const int panel = board_open(KEYBOARD_NODE, 0);
    ASSERT_EQ(vboard_panel_press_named("menu"), 0);
    EXPECT_EQ(read_panel(panel), static_cast<uint32_t>(KEY_CODE_MENU));
    ASSERT_EQ(vboard_panel_press_named("0"), 0);
    EXPECT_EQ(read_panel(panel), static_cast<uint32_t>(KEY_CODE_0));
}

TEST_F(KeyNames, AreRefusedWithTheNearestOne)
{
    const int panel = board_open(KEYBOARD_NODE, 0);
    EXPECT_EQ(vboard_ir_press_named("mneu"), -1);
    EXPECT_EQ(last_refusal(), "board: the remote controls have no button \"mneu\": did you mean \"menu\"?");
    EXPECT_EQ(vboard_panel_press_named("volumeup"), -1);
    EXPECT_EQ(last_refusal(), "board: the panel has no key \"volumeup\": did you mean \"volume-up\"?");
    EXPECT_EQ(vboard_panel_press_named("x"), -1);
    EXPECT_NE(last_refusal().find("there are zoom-out stop 0 1"), std::string::npos);
    EXPECT_EQ(vboard_panel_press_named(nullptr), -1);
    EXPECT_EQ(vboard_ir_press_named(std::string(100000, 'x').c_str()), -1);
    uint32_t code = 0;
    EXPECT_EQ(board_read(panel, &code, sizeof code), 0); // nothing was pressed
}

TEST_F(KeyNames, CodesThatNoKeyHasAreSaidAndDelivered)
{
    const int panel = board_open(KEYBOARD_NODE, 0);
    const int remote = board_open(IR_NODE, 0);
    const uint64_t refusals = vboard_refusal_count();
    testing::internal::CaptureStderr();
    vboard_panel_press(7);
    vboard_ir_press(0x12345678);
    vboard_panel_press(KEY_CODE_MENU);
    vboard_ir_press(0x659AFF00);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "vboard: board: the panel has no key of code 7\n"
              "vboard: board: no button of a remote control sends 0x12345678\n");
    EXPECT_EQ(vboard_refusal_count(), refusals);
    EXPECT_EQ(read_panel(panel), 7u);
    EXPECT_EQ(read_remote(remote), 0x12345678u);
}

} // namespace
