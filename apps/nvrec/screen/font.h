/*
 * font.h - draws letters as coverage, with a scalable font of the host and FreeType. A character that this
 * font lacks comes from another font of the host. Text is UTF-16, drawn character after character from left
 * to right: scripts that join or reorder their letters are not shaped.
 */
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "screen/canvas.h"

namespace nvrec
{

/** Coverage of a line of text, 0 to 255 a pixel, rows without gaps. */
struct Mask {
    int width = 0, height = 0;
    std::vector<uint8_t> coverage;
    uint8_t at(int x, int y) const;
};

/** The host's font for Chinese and Latin text; empty when it has none at all. */
std::string find_font();

class Font
{
public:
    Font();
    ~Font();
    Font(const Font &) = delete;
    Font &operator=(const Font &) = delete;

    /** Once. @return an empty text, or why the file is no font. */
    std::string open(const std::string &path);

    /** Whether the font itself draws this character. */
    bool has(char32_t code) const;

    /**
     * A line of text. The baseline lies at ascender(size_px); the mask is line_height(size_px) high.
     * A line that would be wider than `most_px` ends in an ellipsis.
     */
    Mask render(std::u16string_view units, int size_px, int most_px);
    int line_height(int size_px);
    int ascender(int size_px);

private:
    struct Library;
    struct Face;

    Face &face_for(char32_t code);
    int width_of(std::u16string_view units);
    bool use_size(int size_px);

    int size_px_ = 0; /* of the next glyphs */

    std::unique_ptr<Library> library_;
};

/** Text on the video: letters of one colour with a dark rim of that many pixels around them. */
Tile rimmed(const Mask &mask, Colour colour, int rim_px);

/** Text for a plain background; the tile is empty where no letter is. */
Tile flat(const Mask &mask, Colour colour, Colour ground);

} // namespace nvrec
