/* font.cpp - see font.h. */
#include "screen/font.h"

#include <algorithm>
#include <map>

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

bool is_second_of_pair(char16_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

/* The character at a place of UTF-16 text; the place then moves on behind it. */
char32_t take_code(std::u16string_view units, size_t *at)
{
    const char16_t unit = units[(*at)++];
    const bool first_of_pair = unit >= 0xD800 && unit < 0xDC00;
    if (!first_of_pair || *at >= units.size() || !is_second_of_pair(units[*at])) return unit;
    const char16_t second = units[(*at)++];
    return 0x10000 + (static_cast<char32_t>(unit - 0xD800) << 10) + (second - 0xDC00);
}

void add_glyph(Mask &mask, const FT_GlyphSlotRec &glyph, int pen, int baseline)
{
    const FT_Bitmap &image = glyph.bitmap;
    for (int y = 0; y < static_cast<int>(image.rows); ++y) {
        const int to_y = baseline - glyph.bitmap_top + y;
        for (int x = 0; x < static_cast<int>(image.width); ++x) {
            const int to_x = pen + glyph.bitmap_left + x;
            if (to_x < 0 || to_y < 0 || to_x >= mask.width || to_y >= mask.height) continue;
            uint8_t &to = mask.coverage[static_cast<size_t>(to_y) * static_cast<size_t>(mask.width) +
                                        static_cast<size_t>(to_x)];
            to = std::max(to, image.buffer[y * image.pitch + x]);
        }
    }
}

/* The file of the font that fits the pattern best; empty = there is none. */
std::string best_match(FcPattern *wanted)
{
    std::string path;
    if (!wanted) return path;
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result = FcResultNoMatch;
    FcPattern *match = FcFontMatch(nullptr, wanted, &result);
    FcChar8 *file = nullptr;
    if (match && FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch)
        path = reinterpret_cast<const char *>(file);
    if (match) FcPatternDestroy(match);
    FcPatternDestroy(wanted);
    return path;
}

/* A scalable font of the host with that character. */
std::string find_font_with(char32_t code)
{
    FcPattern *wanted = FcNameParse(reinterpret_cast<const FcChar8 *>("sans:scalable=true"));
    FcCharSet *set = FcCharSetCreate();
    if (wanted && set) {
        FcCharSetAddChar(set, code);
        FcPatternAddCharSet(wanted, FC_CHARSET, set);
    }
    std::string path = best_match(wanted);
    if (set) FcCharSetDestroy(set);
    FcFini();
    return path;
}

} // namespace

uint8_t Mask::at(int x, int y) const
{
    if (x < 0 || y < 0 || x >= width || y >= height) return 0;
    return coverage[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
}

std::string find_font()
{
    std::string path =
        best_match(FcNameParse(reinterpret_cast<const FcChar8 *>("sans:lang=zh-cn:scalable=true")));
    FcFini();
    return path;
}

/* A font file, and the size that it is set to now. */
struct Font::Face {
    FT_Face handle = nullptr;
    int size_px = 0;

    /* @return false = it has no such size. */
    bool use_size(int wanted_px)
    {
        if (wanted_px == size_px) return true;
        if (FT_Set_Pixel_Sizes(handle, 0, static_cast<FT_UInt>(wanted_px)) != 0) return false;
        size_px = wanted_px;
        return true;
    }
};

struct Font::Library {
    FT_Library engine = nullptr;
    Face face;                                /* the font that was opened */
    std::map<std::string, Face> others;       /* by path; a null handle = it cannot be opened */
    std::map<char32_t, Face *> other_by_code; /* of characters that the font lacks */

    Face &open_other(const std::string &path)
    {
        const auto [entry, added] = others.try_emplace(path);
        Face &other = entry->second;
        if (!added) return other;
        if (FT_New_Face(engine, path.c_str(), 0, &other.handle) != 0) other.handle = nullptr;
        if (other.handle && !FT_IS_SCALABLE(other.handle)) {
            FT_Done_Face(other.handle);
            other.handle = nullptr;
        }
        return other;
    }
};

Font::Font() : library_(std::make_unique<Library>()) {}

Font::~Font()
{
    for (auto &[path, other] : library_->others)
        if (other.handle) FT_Done_Face(other.handle);
    if (library_->face.handle) FT_Done_Face(library_->face.handle);
    if (library_->engine) FT_Done_FreeType(library_->engine);
}

std::string Font::open(const std::string &path)
{
    if (FT_Init_FreeType(&library_->engine) != 0) return "FreeType does not start";
    FT_Face &face = library_->face.handle;
    if (FT_New_Face(library_->engine, path.c_str(), 0, &face) != 0) {
        face = nullptr;
        return path + " cannot be read as a font";
    }
    if (!FT_IS_SCALABLE(face)) return path + " is not a scalable font";
    return "";
}

bool Font::has(char32_t code) const
{
    return FT_Get_Char_Index(library_->face.handle, code) != 0;
}

/* If no font has the character, the first font's own sign for a missing character is drawn. */
Font::Face &Font::face_for(char32_t code)
{
    if (has(code)) return library_->face;
    const auto [entry, added] = library_->other_by_code.try_emplace(code, &library_->face);
    if (added) {
        const std::string path = find_font_with(code);
        if (!path.empty()) {
            Face &other = library_->open_other(path);
            if (other.handle && FT_Get_Char_Index(other.handle, code) != 0) entry->second = &other;
        }
    }
    return *entry->second;
}

bool Font::use_size(int size_px)
{
    size_px_ = size_px;
    return library_->face.use_size(size_px);
}

int Font::line_height(int size_px)
{
    if (!use_size(size_px)) return 0;
    const FT_Size_Metrics &metrics = library_->face.handle->size->metrics;
    return whole_pixels(metrics.ascender) + whole_pixels(-metrics.descender);
}

int Font::ascender(int size_px)
{
    return use_size(size_px) ? whole_pixels(library_->face.handle->size->metrics.ascender) : 0;
}

int Font::width_of(std::u16string_view units)
{
    int width = 0;
    for (size_t at = 0; at < units.size();) {
        const char32_t code = take_code(units, &at);
        Face &face = face_for(code);
        if (face.use_size(size_px_) && FT_Load_Char(face.handle, code, FT_LOAD_NO_BITMAP) == 0)
            width += whole_pixels(face.handle->glyph->advance.x);
    }
    return width;
}

Mask Font::render(std::u16string_view units, int size_px, int most_px)
{
    if (!use_size(size_px)) return {};
    std::u16string line(units);
    while (width_of(line) > most_px && line.size() > 1) {
        if (line.back() == kEllipsis) line.pop_back();
        const bool pair = line.size() > 1 && is_second_of_pair(line.back());
        line.resize(line.size() - (pair ? 2 : 1));
        line += kEllipsis;
        if (line.size() == 1) break; /* not even that fits */
    }

    Mask mask = {width_of(line), line_height(size_px), {}};
    mask.coverage.resize(static_cast<size_t>(mask.width) * static_cast<size_t>(mask.height));
    const int baseline = ascender(size_px);
    int pen = 0;
    for (size_t at = 0; at < line.size();) {
        const char32_t code = take_code(line, &at);
        Face &face = face_for(code);
        if (!face.use_size(size_px)) continue;
        if (FT_Load_Char(face.handle, code, FT_LOAD_RENDER | FT_LOAD_NO_BITMAP) != 0) continue;
        add_glyph(mask, *face.handle->glyph, pen, baseline);
        pen += whole_pixels(face.handle->glyph->advance.x);
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
