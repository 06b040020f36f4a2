/*
 * cursor.h - the mouse's cursor: the library's arrow, drawn over all else.
 *
 * The pixels that it covers are kept and put back: call lift() before anything else is drawn, and drop()
 * after that.
 */
#pragma once

#include "screen/canvas.h"

namespace nvrec
{

class Cursor
{
public:
    Cursor();

    /** Set the place of its tip; the next drop() draws it there. */
    void move(int x, int y);
    void hide() { wanted_ = false; }
    bool wanted() const { return wanted_; }

    /** Take it off the screen, or put it on. Inside a drawing job. */
    void lift(Canvas &canvas);
    void drop(Canvas &canvas);

    const Tile &image() const { return image_; }

private:
    Tile image_;
    int x_ = 0, y_ = 0;
    bool wanted_ = false;

    bool dropped_ = false; /* with what it covers there, and where */
    Tile under_;
    int under_x_ = 0, under_y_ = 0;
};

} // namespace nvrec
