/* cursor.cpp - see cursor.h. */
#include "screen/cursor.h"

#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr uint16_t kBackground = 0x001F; /* of the library's image: to be left out */

/* A pixel of 1-5-5-5 as 8-bit components, the alpha bit left out. */
Colour colour_of(uint16_t pixel)
{
    return static_cast<Colour>((pixel >> 10 & 31) << 19 | (pixel >> 5 & 31) << 11 | (pixel & 31) << 3);
}

} // namespace

Cursor::Cursor() : image_{MOUSE_IMAGE_WIDTH, MOUSE_IMAGE_HEIGHT, {}}
{
    for (const uint16_t pixel : CurseValue)
        image_.pixels.push_back(pixel == kBackground ? 0 : pixel_of(colour_of(pixel)));
}

void Cursor::move(int x, int y)
{
    x_ = x;
    y_ = y;
    wanted_ = true;
}

void Cursor::lift(Canvas &canvas)
{
    if (dropped_) canvas.restore(under_, under_x_, under_y_);
    dropped_ = false;
}

void Cursor::drop(Canvas &canvas)
{
    if (!wanted_) return;
    under_ = canvas.save({x_, y_, image_.width, image_.height});
    under_x_ = x_;
    under_y_ = y_;
    canvas.draw(image_, x_, y_);
    dropped_ = true;
}

} // namespace nvrec
