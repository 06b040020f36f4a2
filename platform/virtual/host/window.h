/* window.h - a window on the PC's desk that shows I420 pictures. All calls from one thread. */
#ifndef VBOARD_WINDOW_H
#define VBOARD_WINDOW_H

#include <memory>

#include "host/picture.h"

namespace vboard
{

class DeskWindow
{
public:
    /* Null when there is no screen. */
    static std::unique_ptr<DeskWindow> open(const char *title, int width, int height);

    virtual ~DeskWindow() = default;

    /* Put a picture into the window; any size. */
    virtual bool show(const PlanarView &picture) = 0;

    /* Handle the window's events; false once the user has closed it or pressed Esc. */
    virtual bool handle_events() = 0;
};

} // namespace vboard

#endif
