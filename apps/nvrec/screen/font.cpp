/* font.cpp - see font.h. */
#include "screen/font.h"

#include <algorithm>

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H

namespace nvrec
{
namespace
{

constexpr Colour kRim = 0x101010;
constexpr char16_t kEllipsis = 0x2026;
constexpr int kFixedPoint = 64; /* FreeType's metrics count 1/64 pixels */

int whole_pixels(FT_Pos units)
{
    return static_cast<int>((units + kFixedPoint - 1) / kFixedPoint);
}

/* The strongest coverage in a disc around a pixel. */
uint8_t strongest_around(const Mask &mask, int x, int y, int radius)
{
    uint8_t strongest = 0;
    for (int dy = -radius; dy <= radius; ++dy) {
        for (int dx = -radius; dx <= radius; ++dx) {
            if (dx * dx + dy * dy > radius * radius + 1) continue;
            strongest = std::max(strongest, mask.at(x + dx, y + dy));
        }
    }
    return strongest;
}

} // namespace

uint8_t Mask::at(int x, int y) const
{
    if (x < 0 || y < 0 || x >= width || y >= height) return 0;
    return coverage[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
}

std::string find_font()
{
    std::string path;
    FcPattern *mode = FcNameParse(reinterpret_cast<const FcChar8 *>("sans:lang=zh-cn:scalable=true"));
    if (mode) {
        FcConfigSubstitute(nullptr, mode, FcMatchPattern);
        FcDefaultSubstitute(mode);
        FcResult result = FcResultNoMatch;
        FcPattern *match = FcFontMatch(nullptr, mode, &result);
        FcChar8 *file = nullptr;
        if (match && FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch)
            path = reinterpret_cast<const char *>(file);
        if (match) FcPatternDestroy(match);
        FcPatternDestroy(mode);
    }
    FcFini();
    return path;
}

struct Font::Library {
    FT_Library engine = nullptr;
    FT_Face face = nullptr;
};

Font::Font() : library_(std::make_unique<Library>()) {}

Font::~Font()
{
    if (library_->face) FT_Done_Face(library_->face);
    if (library_->engine) FT_Done_FreeType(library_->engine);
}

std::string Font::open(const std::string &path)
{
    if (FT_Init_FreeType(&library_->engine) != 0) return "FreeType does not start";
    if (FT_New_Face(library_->engine, path.c_str(), 0, &library_->face) != 0) {
        library_->face = nullptr;
        return path + " cannot be read as a font";
    }
    if (!FT_IS_SCALABLE(library_->face)) return path + " is not a scalable font";
    return "";
}

bool Font::has(char16_t unit) const
{
    return FT_Get_Char_Index(library_->face, unit) != 0;
}

bool Font::use_size(int size_px)
{
    if (size_px == size_px_) return true;
    if (FT_Set_Pixel_Sizes(library_->face, 0, static_cast<FT_UInt>(size_px)) != 0) return false;
    size_px_ = size_px;
    return true;
}

int Font::line_height(int size_px)
{
    if (!use_size(size_px)) return 0;
    const FT_Size_Metrics &metrics = library_->face->size->metrics;
    return whole_pixels(metrics.ascender) + whole_pixels(-metrics.descender);
}

int Font::ascender(int size_px)
{
    return use_size(size_px) ? whole_pixels(library_->face->size->metrics.ascender) : 0;
}

int Font::width_of(std::u16string_view units)
{
    int width = 0;
    for (const char16_t unit : units) {
        if (FT_Load_Char(library_->face, unit, FT_LOAD_NO_BITMAP) == 0)
            width += whole_pixels(library_->face->glyph->advance.x);
    }
    return width;
}

Mask Font::render(std::u16string_view units, int size_px, int most_px)
{
    if (!use_size(size_px)) return {};
    std::u16string line(units);
    while (width_of(line) > most_px && line.size() > 1) {
        line.resize(line.size() - (line.back() == kEllipsis ? 2 : 1));
        line += kEllipsis;
    }

    Mask mask = {width_of(line), line_height(size_px), {}};
    mask.coverage.resize(static_cast<size_t>(mask.width) * static_cast<size_t>(mask.height));
    const int baseline = ascender(size_px);
    int pen = 0;
    for (const char16_t unit : line) {
        if (FT_Load_Char(library_->face, unit, FT_LOAD_RENDER | FT_LOAD_NO_BITMAP) != 0) continue;
        const FT_GlyphSlotRec *glyph = library_->face->glyph;
        const FT_Bitmap &image = glyph->bitmap;
        for (int y = 0; y < static_cast<int>(image.rows); ++y) {
            const int to_y = baseline - glyph->bitmap_top + y;
            for (int x = 0; x < static_cast<int>(image.width); ++x) {
                const int to_x = pen + glyph->bitmap_left + x;
                if (to_x < 0 || to_y < 0 || to_x >= mask.width || to_y >= mask.height) continue;
                uint8_t &to = mask.coverage[static_cast<size_t>(to_y) * static_cast<size_t>(mask.width) +
                                            static_cast<size_t>(to_x)];
                to = std::max(to, image.buffer[y * image.pitch + x]);
            }
        }
        pen += whole_pixels(glyph->advance.x);
    }
    return mask;
}

Tile rimmed(const Mask &mask, Colour colour, int rim_px)
{
    constexpr uint8_t kRimThreshold = 80; /* fainter coverage is not worth a dark pixel */
    Tile tile = {mask.width + 2 * rim_px, mask.height + 2 * rim_px, {}};
    tile.pixels.reserve(static_cast<size_t>(tile.width) * static_cast<size_t>(tile.height));
    for (int y = -rim_px; y < mask.height + rim_px; ++y) {
        for (int x = -rim_px; x < mask.width + rim_px; ++x) {
            const bool inked = strongest_around(mask, x, y, rim_px) >= kRimThreshold;
            tile.pixels.push_back(inked ? pixel_of(mixed(kRim, colour, mask.at(x, y))) : uint16_t{0});
        }
    }
    return tile;
}

Tile flat(const Mask &mask, Colour colour, Colour ground)
{
    Tile tile = {mask.width, mask.height, {}};
    tile.pixels.reserve(mask.coverage.size());
    for (const uint8_t coverage : mask.coverage)
        tile.pixels.push_back(coverage == 0 ? uint16_t{0} : pixel_of(mixed(ground, colour, coverage)));
    return tile;
}

} // namespace nvrec
