/*
 * The board's window without a screen: what the user does in it reaches the IR receiver and the
 * mouse. SDL's dummy driver shows nothing; the events are put where the desktop would put them.
 */
#include <cstdlib>
#include <cstring>

#include <SDL.h>
#include <fcntl.h>
#include <gtest/gtest.h>

#include "board_io.h"
#include "ir_driver.h"
#include "mouse_driver.h"
#include "vboard.h"

namespace
{

constexpr uint32_t kUp = 0x6699FF00;
constexpr uint32_t kBack = 0x6798FF00;

class Window : public testing::Test
{
protected:
    void SetUp() override
    {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        remote_ = board_open(IR_NODE, O_RDONLY);
        mouse_ = board_open(MOUSE_NODE, O_RDONLY);
        ASSERT_EQ(vboard_window_open("a window"), 0);
        ASSERT_EQ(vboard_window_poll(), VBOARD_WINDOW_OPEN); /* shows the first picture */
        while (next_mouse().type != 0) { /* where the desktop's mouse is at first does not matter */
        }
    }

    void TearDown() override { vboard_window_close(); }

    static void push_key(SDL_Keycode key)
    {
        SDL_Event event = {};
        event.type = SDL_KEYDOWN;
        event.key.keysym.sym = key;
        ASSERT_EQ(SDL_PushEvent(&event), 1);
    }

    static void push_motion(int x, int y)
    {
        SDL_Event event = {};
        event.type = SDL_MOUSEMOTION;
        event.motion.windowID = 1;
        event.motion.x = x;
        event.motion.y = y;
        ASSERT_EQ(SDL_PushEvent(&event), 1);
    }

    static void push_button(uint32_t type, uint8_t button, int x, int y)
    {
        SDL_Event event = {};
        event.type = type;
        event.button.windowID = 1;
        event.button.button = button;
        event.button.x = x;
        event.button.y = y;
        ASSERT_EQ(SDL_PushEvent(&event), 1);
    }

    /* The next frame of the receiver; code 0 = none came. */
    IrFrame next_frame() const
    {
        IrFrame frame = {};
        EXPECT_GE(board_read(remote_, &frame, sizeof frame), 0);
        return frame;
    }

    /* The next event of the mouse; type 0 = none came. */
    MouseEvent next_mouse() const
    {
        MouseEvent event = {};
        EXPECT_GE(board_read(mouse_, &event, sizeof event), 0);
        return event;
    }

    int remote_ = -1;
    int mouse_ = -1;
};

TEST_F(Window, F11SwitchesToFullScreenAndBack)
{
    SDL_Window *window = SDL_GetWindowFromID(1);
    ASSERT_NE(window, nullptr);
    for (const bool filled : {true, false}) {
        push_key(SDLK_F11);
        ASSERT_EQ(vboard_window_poll(), VBOARD_WINDOW_OPEN);
        EXPECT_EQ((SDL_GetWindowFlags(window) & SDL_WINDOW_FULLSCREEN_DESKTOP) != 0, filled);
    }
    const vboard_window_key keys[] = {{"F11", kUp}};
    ASSERT_EQ(vboard_window_set_keys(keys, 1), 0);
    push_key(SDLK_F11);
    ASSERT_EQ(vboard_window_poll(), VBOARD_WINDOW_OPEN);
    EXPECT_EQ(SDL_GetWindowFlags(window) & SDL_WINDOW_FULLSCREEN_DESKTOP, 0u) << "it is a button now";
    EXPECT_EQ(next_frame().code, kUp);
    EXPECT_EQ(vboard_window_set_keys(nullptr, 0), 0);
}

TEST_F(Window, AKeyPressesItsButtonOfTheRemoteControl)
{
    const vboard_window_key keys[] = {{"Up", kUp}, {"Backspace", kBack}};
    ASSERT_EQ(vboard_window_set_keys(keys, 2), 0);
    push_key(SDLK_UP);
    push_key(SDLK_q); /* no button */
    push_key(SDLK_BACKSPACE);
    EXPECT_EQ(vboard_window_poll(), VBOARD_WINDOW_OPEN);
    for (const uint32_t code : {kUp, kBack}) {
        for (const uint32_t state : {0u, 1u}) {
            const IrFrame frame = next_frame();
            EXPECT_EQ(frame.code, code);
            EXPECT_EQ(frame.state, state);
        }
    }
    EXPECT_EQ(next_frame().code, 0u);
}

TEST_F(Window, ANewListOfKeysTakesThePlaceOfTheOld)
{
    const vboard_window_key up = {"Up", kUp};
    const vboard_window_key back = {"Backspace", kBack};
    ASSERT_EQ(vboard_window_set_keys(&up, 1), 0);
    ASSERT_EQ(vboard_window_set_keys(&back, 1), 0);
    push_key(SDLK_UP);
    EXPECT_EQ(vboard_window_poll(), VBOARD_WINDOW_OPEN);
    EXPECT_EQ(next_frame().code, 0u);
    const vboard_window_key wrong[] = {{"Up", kUp}, {"No such key", kUp}};
    EXPECT_EQ(vboard_window_set_keys(wrong, 2), -1);
    push_key(SDLK_BACKSPACE);
    EXPECT_EQ(vboard_window_poll(), VBOARD_WINDOW_OPEN);
    EXPECT_EQ(next_frame().code, kBack) << "a list that is refused changes nothing";
}

TEST_F(Window, EscClosesItUnlessItIsAButton)
{
    const vboard_window_key escape = {"Escape", kBack};
    ASSERT_EQ(vboard_window_set_keys(&escape, 1), 0);
    push_key(SDLK_ESCAPE);
    EXPECT_EQ(vboard_window_poll(), VBOARD_WINDOW_OPEN);
    EXPECT_EQ(next_frame().code, kBack);
    ASSERT_EQ(vboard_window_set_keys(nullptr, 0), 0);
    push_key(SDLK_ESCAPE);
    EXPECT_EQ(vboard_window_poll(), VBOARD_WINDOW_CLOSED);
}

TEST_F(Window, TheMouseIsWhereItIsOnTheOutput)
{
    /* The window of a 1920 x 1080 output opens at half its size. */
    push_motion(240, 135);
    EXPECT_EQ(vboard_window_poll(), VBOARD_WINDOW_OPEN);
    const MouseEvent event = next_mouse();
    EXPECT_EQ(event.type, static_cast<uint32_t>(MOUSE_EVENT_MOVE));
    EXPECT_EQ(event.x, 480);
    EXPECT_EQ(event.y, 270);
    push_motion(240, 135);
    EXPECT_EQ(vboard_window_poll(), VBOARD_WINDOW_OPEN);
    EXPECT_EQ(next_mouse().type, 0u) << "it has not moved";
}

TEST_F(Window, ButtonsAndWheelReachTheMouseNode)
{
    push_button(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_LEFT, 10, 20);
    push_button(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_RIGHT, 10, 20);
    push_button(SDL_MOUSEBUTTONUP, SDL_BUTTON_LEFT, 10, 20);
    push_button(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_X1, 10, 20); /* this mouse has three */
    SDL_Event wheel = {};
    wheel.type = SDL_MOUSEWHEEL;
    wheel.wheel.y = -2;
    ASSERT_EQ(SDL_PushEvent(&wheel), 1);
    EXPECT_EQ(vboard_window_poll(), VBOARD_WINDOW_OPEN);
    EXPECT_EQ(next_mouse().type, static_cast<uint32_t>(MOUSE_EVENT_MOVE));
    for (const uint32_t buttons : {1u, 3u, 2u}) {
        const MouseEvent event = next_mouse();
        EXPECT_EQ(event.type, static_cast<uint32_t>(MOUSE_EVENT_BUTTON));
        EXPECT_EQ(event.buttons, buttons);
        EXPECT_EQ(event.x, 20);
        EXPECT_EQ(event.y, 40);
    }
    const MouseEvent turn = next_mouse();
    EXPECT_EQ(turn.type, static_cast<uint32_t>(MOUSE_EVENT_WHEEL));
    EXPECT_EQ(turn.wheel, -2);
    EXPECT_EQ(turn.buttons, 2u);
}

} // namespace
