/* The recorder's hands in one process with the board: keys of every kind and the mouse arrive. */
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "controls/key_names.h"
#include "controls/keys.h"
#include "controls/keys_navigation.h"
#include "fake_wall.h"
#include "nvrhal.h"
#include "start_board.h"
#include "vboard.h"
#include "vboard_devices.h"

namespace
{

using namespace nvrec;
using namespace std::chrono_literals;
using nvrec_test::FakeWall;

/* As the library's reader of the remote control does it. */
void write_remote_key(uint32_t key_code)
{
    constexpr uint32_t kRemote = 2; /* KeyEvent::source */
    pthread_mutex_lock(&g_key_lock);
    const uint32_t index = key_que.write_index;
    key_que.slots[index].source = kRemote;
    key_que.slots[index].code = key_code;
    __atomic_store_n(&key_que.write_index, (index + 1) % NVRHAL_KEY_WRITER_SLOTS, __ATOMIC_RELAXED);
    pthread_mutex_unlock(&g_key_lock);
}

TEST(KeyNames, EveryButtonIsFoundByItsNameAndByItsKeyCode)
{
    for (const Button &button : buttons()) {
        ASSERT_NE(button_named(button.name), nullptr);
        EXPECT_EQ(button_named(button.name)->key, button.key) << button.name;
        ASSERT_NE(button_sending(button.key_code), nullptr);
        EXPECT_EQ(button_sending(button.key_code)->key, button.key) << button.name;
    }
    EXPECT_EQ(button_named("MENU"), button_named("menu"));
    EXPECT_EQ(button_named("menue"), nullptr);
    EXPECT_EQ(button_sending(0), nullptr) << "what the queue's unwritten slots hold";
}

TEST(KeyNames, ThePcHasEveryKeyOfTheWindow)
{
    constexpr uint32_t kAnyCode = 1;
    for (const Button &button : buttons()) {
        const vboard_window_key key = {button.pc_key, kAnyCode};
        EXPECT_EQ(vboard_window_set_keys(&key, 1), 0) << button.pc_key;
    }
    const vboard_window_key absent = {"Any key", kAnyCode};
    EXPECT_EQ(vboard_window_set_keys(&absent, 1), -1);
    EXPECT_EQ(vboard_window_set_keys(nullptr, 1), -1);
}

TEST(RecorderKeys, EveryButtonOfTheRemoteArrivesThroughTheLibrary)
{
    FakeWall wall(4);
    Keys keys;
    ASSERT_TRUE(keys.start(wall));
    /* The library's reader opens the receiver on its own thread: press until it listens. */
    std::atomic<bool> done = false;
    std::thread hand([&] {
        while (!keys.press(*button_named("menu"), Keys::Way::kRemote, 200ms)) {
        }
        for (const Button &button : buttons())
            EXPECT_TRUE(keys.press(button, Keys::Way::kRemote, 20s)) << button.name;
        done = true;
        wall.wake();
    });
    EXPECT_TRUE(wall.turn_until(keys, [&] { return done.load(); }));
    hand.join();
    ASSERT_GT(wall.keys.size(), buttons().size());
    size_t at = wall.keys.size() - buttons().size();
    for (const Button &button : buttons())
        EXPECT_EQ(wall.keys.at(at++), button.key) << button.name;
    keys.stop();
}

TEST(RecorderKeys, KeysOfThePanelArriveInOrderAndNotThroughTheLibrary)
{
    FakeWall wall(4);
    Keys keys;
    ASSERT_TRUE(keys.start(wall));
    vboard_panel_press(button_named("layout")->key_code);
    vboard_panel_press(button_named("5")->key_code);
    vboard_panel_press(7); /* no key of ours */
    vboard_panel_press(button_named("back")->key_code);
    EXPECT_TRUE(wall.turn_until(keys, [&] { return wall.keys.size() == 3; }));
    EXPECT_EQ(wall.keys, (std::vector<Key>{Key::kNextLayout, button_named("5")->key, Key::kBack}));
    EXPECT_EQ(__atomic_load_n(&key_que.write_index, __ATOMIC_RELAXED), 0u)
        << "the library's queue has the remote's keys alone";
    vboard_panel_stat panel;
    ASSERT_EQ(vboard_panel_get_stat(&panel), 0);
    EXPECT_EQ(panel.keys_taken + panel.empty_polls, 0u) << "nothing was asked of the library";
}

/* While the wall lays out, keys wait. Nobody holds the remote: the test writes as the library's reader does.
 */
TEST(RecorderKeys, KeysThatWaitComeInTheOrderInWhichRemoteAndPanelWerePressed)
{
    FakeWall wall(4);
    Keys keys;
    ASSERT_TRUE(keys.start(wall));
    constexpr uint32_t kFirst = NVRHAL_KEY_WRITER_SLOTS - 2; /* the writer comes round on the way */
    __atomic_store_n(&key_que.read_index, kFirst, __ATOMIC_RELAXED);
    __atomic_store_n(&key_que.write_index, kFirst, __ATOMIC_RELAXED);
    ASSERT_TRUE(wall.wait_for_wake());

    const std::vector<const char *> names = {"1", "2", "3", "4", "5", "6", "7", "8"};
    const std::string ways = "PRPPRRRP";
    std::vector<Key> pressed;
    for (size_t i = 0; i < names.size(); ++i) {
        const Button &button = *button_named(names[i]);
        pressed.push_back(button.key);
        if (ways[i] == 'P')
            vboard_panel_press(button.key_code);
        else
            write_remote_key(button.key_code);
        ASSERT_TRUE(wall.wait_for_wake()) << button.name;
    }
    EXPECT_TRUE(wall.keys.empty());
    keys.take_turn(Clock::now());
    EXPECT_EQ(wall.keys, pressed);
}

/* What the recorder has no room for waits in the panel's node, which keeps 64. */
TEST(RecorderKeys, OfThePanelNoneIsLostWhileTheWallTakesNone)
{
    constexpr int kRead = 16; /* that the recorder has room for */
    constexpr int kPresses = kRead + 40;
    FakeWall wall(4);
    Keys keys;
    ASSERT_TRUE(keys.start(wall));
    std::vector<Key> pressed;
    for (int i = 0; i < kPresses; ++i) {
        const Button &button = *button_named(i % 3 ? "up" : "down");
        vboard_panel_press(button.key_code);
        pressed.push_back(button.key);
        if (i < kRead) {
            ASSERT_TRUE(wall.wait_for_wake()) << i;
        }
    }
    EXPECT_TRUE(wall.turn_until(keys, [&] { return wall.keys.size() >= pressed.size(); }));
    EXPECT_EQ(wall.keys, pressed);
}

TEST(RecorderKeys, NoneIsLostOrMadeUpWhenTheQueueGoesRound)
{
    FakeWall wall(4);
    Keys keys;
    ASSERT_TRUE(keys.start(wall));
    const Button &up = *button_named("up");
    constexpr size_t kPresses = 300; /* twice round the writer's slots, once round the reader's */
    for (size_t i = 1; i <= kPresses; ++i) {
        write_remote_key(up.key_code);
        ASSERT_TRUE(wall.turn_until(keys, [&] { return wall.keys.size() >= i; })) << i;
    }
    EXPECT_EQ(wall.keys, std::vector<Key>(kPresses, Key::kUp));
}

TEST(RecorderKeys, NoPressOfTheMouseIsLostBehindMoves)
{
    FakeWall wall(4);
    Keys keys;
    ASSERT_TRUE(keys.start(wall));
    for (int i = 0; i < 5; ++i) {
        vboard_mouse_move(100 + i, 200);
        vboard_mouse_buttons(1);
        vboard_mouse_move(110 + i, 200);
        vboard_mouse_buttons(0);
        vboard_mouse_wheel(-1);
    }
    const auto presses = [&] {
        int count = 0;
        for (const PointerEvent &event : wall.pointers)
            count += event.pressed == 1;
        return count;
    };
    const auto turns = [&] {
        int count = 0;
        for (const PointerEvent &event : wall.pointers)
            count -= event.wheel;
        return count;
    };
    EXPECT_TRUE(wall.turn_until(keys, [&] { return turns() == 5; }));
    EXPECT_EQ(presses(), 5);
    EXPECT_EQ(wall.pointers.back().x, 114);
    EXPECT_EQ(wall.pointers.back().buttons, 0u);
}

TEST(RecorderKeys, ARecorderWithoutPanelReceiverAndMouseGoesOn)
{
    vboard_set_loud(0);
    ASSERT_EQ(vboard_fault_set("board_open", 1, 0, -1), 0);
    FakeWall wall(4);
    Keys keys;
    EXPECT_TRUE(keys.start(wall));
    ASSERT_EQ(vboard_ir_press_named("menu"), 0);
    keys.take_turn(Clock::now());
    EXPECT_TRUE(wall.keys.empty());
    EXPECT_FALSE(keys.press(*button_named("menu"), Keys::Way::kRemote, 50ms));
    keys.stop();
}

TEST(RecorderNavigation, TheLayoutKeyGoesThroughWhatIsWorthHaving)
{
    EXPECT_EQ(layout_after(Layout::kGrid2, 4), Layout::kOneAndFive);
    EXPECT_EQ(layout_after(Layout::kOneAndFive, 4), Layout::kOneAndSeven);
    EXPECT_EQ(layout_after(Layout::kOneAndSeven, 4), Layout::kGrid2) << "nine panes for four cameras are not";
    EXPECT_EQ(layout_after(Layout::kGrid4, 16), Layout::kGrid2);
    EXPECT_EQ(layout_after(Layout::kSingle, 1), Layout::kSingle) << "one camera has no other layout";
}

TEST(RecorderNavigation, ArrowsGoToTheNextPane)
{
    const auto grid = make_panes(Layout::kGrid3, 1920, 1080, 9);
    EXPECT_EQ(neighbour(grid, 4, 0, -1), 1);
    EXPECT_EQ(neighbour(grid, 4, 0, 1), 7);
    EXPECT_EQ(neighbour(grid, 4, -1, 0), 3);
    EXPECT_EQ(neighbour(grid, 4, 1, 0), 5);
    EXPECT_EQ(neighbour(grid, 8, 1, 0), 8) << "the edge holds";
    EXPECT_EQ(neighbour(grid, 15, 1, 0), 0) << "a camera without a pane";
    const auto large = make_panes(Layout::kOneAndFive, 1920, 1080, 6);
    EXPECT_EQ(neighbour(large, 5, 0, -1), 2);
    EXPECT_EQ(neighbour(large, 3, 0, -1), 0);
    EXPECT_EQ(neighbour({}, 3, 0, -1), 3);
}

} // namespace
