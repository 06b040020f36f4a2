/* window.h - a window on the PC's desktop that shows I420 pictures. All calls from one thread. */
#ifndef VBOARD_WINDOW_H
#define VBOARD_WINDOW_H

#include <cstdint>
#include <map>
#include <memory>

#include "host/picture.h"

namespace vboard
{

/* By the PC's own number of a key: the infrared code of the button that it presses. */
using WindowKeys = std::map<int32_t, uint32_t>;

/* The PC's number of the key of that name; 0 = no such key. */
int32_t key_number(const char *name);

/* What the user does in the window, as the board's devices notice it. */
class DeskInput
{
public:
    virtual void press(uint32_t ir_code) = 0;
    virtual void move(int32_t x, int32_t y) = 0;
    virtual void set_buttons(uint32_t buttons) = 0; // those that are down, enum MouseButton or-ed
    virtual void turn_wheel(int32_t notches) = 0;

protected:
    ~DeskInput() = default;
};

class DeskWindow
{
public:
    /* Null when there is no screen. */
    static std::unique_ptr<DeskWindow> open(const char *title, int width, int height);

    virtual ~DeskWindow() = default;

    /* Put a picture into the window; any size. */
    virtual bool show(const PlanarView &picture) = 0;

    /*
     * Handle the window's events; false once the user has closed it or pressed an Esc without a button. An
     * F11 without a button shows the window on the full screen, and the next one gives it its frame again.
     */
    virtual bool handle_events(const WindowKeys &keys, DeskInput &input) = 0;
};

} // namespace vboard

#endif
