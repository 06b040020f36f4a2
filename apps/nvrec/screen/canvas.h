/*
 * canvas.h - the framebuffer as something to draw in: rectangles, frames and tiles, all clipped.
 *
 * The library sets the framebuffer up as 16 bits a pixel with one alpha bit (1-5-5-5), and black as
 * the colour key. So a pixel of 0 shows the video, and what is to look black is drawn one step above
 * it. Solid areas go through the library's painter; tiles are written into the memory that it maps.
 *
 * begin() and end() bracket every drawing job. Main thread.
 */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nvrec
{

struct Rect {
    int x = 0, y = 0, w = 0, h = 0;

    bool empty() const { return w <= 0 || h <= 0; }
    int right() const { return x + w; }
    int bottom() const { return y + h; }
    bool contains(int px, int py) const { return px >= x && py >= y && px < right() && py < bottom(); }
    Rect shrunk(int by) const { return {x + by, y + by, w - 2 * by, h - 2 * by}; }
    bool operator==(const Rect &) const = default;
};

/** The area that both have in common; may be empty. */
Rect intersection(const Rect &a, const Rect &b);

/** The smallest rectangle around both; an empty one is left out. */
Rect around(const Rect &a, const Rect &b);

/** 0xRRGGBB. */
using Colour = uint32_t;

/** A framebuffer pixel: opaque, and never the colour key. */
uint16_t pixel_of(Colour colour);

/** A mixture: `share` of 255 parts of `over`, the rest of `under`. */
Colour mixed(Colour under, Colour over, int share);

/** Ready framebuffer pixels, rows without gaps; 0 = the video shows. */
struct Tile {
    int width = 0, height = 0;
    std::vector<uint16_t> pixels;
};

class Canvas
{
public:
    /** Use the framebuffer that the library set up when it started. @return an empty text, or why not. */
    std::string open();

    int width() const { return width_; }
    int height() const { return height_; }
    Rect whole() const { return {0, 0, width_, height_}; }

    /** A drawing job. Only if begin() returns true may something be drawn. */
    bool begin();
    void end();

    /** Draw only inside this rectangle. begin() removes the limit. */
    void clip(const Rect &rect) { clip_ = intersection(rect, whole()); }

    /** Let the video show. */
    void clear(const Rect &rect);
    void fill(const Rect &rect, Colour colour);

    /** The edges of a rectangle, inside it. */
    void frame(const Rect &rect, int thickness_px, Colour colour);

    /** Darken the video: three of four pixels nearly black, in a fine grid. */
    void veil(const Rect &rect);

    /** A tile's pixels that are not 0. */
    void draw(const Tile &tile, int x, int y);

    /** Copy an area out, and put it back as it was; parts outside of the screen are left out. */
    Tile save(const Rect &rect) const;
    void restore(const Tile &tile, int x, int y);

private:
    void take_geometry();
    uint16_t *row(int x, int y) const;
    void paint(const Rect &rect, uint32_t colour);
    template <typename Write> void each_visible(const Tile &tile, int x, int y, Write write);

    const void *mapped_ = nullptr; /* as of take_geometry()      */
    int width_ = 0, height_ = 0;   /* pixels                     */
    uint32_t pitch_bytes_ = 0;
    Rect clip_;
};

} // namespace nvrec
