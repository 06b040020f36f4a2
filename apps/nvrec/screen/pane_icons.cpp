/* pane_icons.cpp - see pane_icons.h. Signs are drawn as rows of letters, '#' = ink. */
#include "screen/pane_icons.h"

#include <algorithm>
#include <array>

#include "screen/font.h"

namespace nvrec
{
namespace
{

constexpr int kSide = 13; /* of a drawn sign, pixels before it is enlarged */
using Drawing = std::array<const char *, kSide>;

constexpr Drawing kRecordDot = {
    "    #####    ", "  #########  ", " ########### ", " ########### ", "#############",
    "#############", "#############", "#############", "#############", " ########### ",
    " ########### ", "  #########  ", "    #####    ",
};
constexpr Drawing kSpeaker = {
    "      #   #  ", "     ##    # ", "    ###  #  #", "   ####   # #", "#######   # #",
    "#######   # #", "#######   # #", "#######   # #", "#######   # #", "   ####   # #",
    "    ###  #  #", "     ##    # ", "      #   #  ",
};
constexpr Drawing kWalker = {
    "      ###    ", "      ###    ", "      ###    ", "    ####     ", "   ######    ",
    "  ## ### ### ", "  #  ###     ", "     ###     ", "    #####    ", "    ## ##    ",
    "   ##   ##   ", "  ##     ##  ", "  #       #  ",
};
constexpr Drawing kPlugOut = {
    "#          ##", "##   #  ## ##", " ##  #  ##   ", "  ## #  ##   ", "   ########  ",
    "    #######  ", "   # ######  ", "   ## ####   ", "    ## ##    ", "     ## #    ",
    "     ###     ", "      ###    ", "      # ##   ",
};
constexpr Drawing kCamera = {
    "             ", "             ", "#########    ", "#########  ##", "######### ###",
    "#############", "#############", "######### ###", "#########  ##", "#########    ",
    "    #        ", "   ###       ", "             ",
};

constexpr Colour kRed = 0xF83030, kWhite = 0xFFFFFF, kGreen = 0x48E078, kAmber = 0xF8B020, kDim = 0x303840;

struct Sign {
    bool PaneState::*shown;
    const Drawing &drawing;
    Colour colour;
};

const Sign kSigns[] = {
    {&PaneState::no_signal, kPlugOut, kAmber},
    {&PaneState::motion, kWalker, kGreen},
    {&PaneState::sound, kSpeaker, kWhite},
    {&PaneState::recording, kRecordDot, kRed},
};

Mask enlarged(const Drawing &drawing, int size_px)
{
    Mask mask = {size_px, size_px, {}};
    mask.coverage.resize(static_cast<size_t>(size_px) * static_cast<size_t>(size_px));
    for (int y = 0; y < size_px; ++y) {
        for (int x = 0; x < size_px; ++x) {
            const bool ink = drawing[static_cast<size_t>(y * kSide / size_px)][x * kSide / size_px] == '#';
            mask.coverage[static_cast<size_t>(y) * static_cast<size_t>(size_px) + static_cast<size_t>(x)] =
                ink ? 255 : 0;
        }
    }
    return mask;
}

void copy_into(Tile &to, const Tile &from, int x)
{
    for (int row = 0; row < from.height; ++row)
        std::copy_n(from.pixels.begin() + row * from.width, from.width,
                    to.pixels.begin() + row * to.width + x);
}

} // namespace

Tile icons_of(const PaneState &state, int size_px)
{
    constexpr int kRim_px = 1;
    const int side = size_px + 2 * kRim_px, step = side + size_px / 4;
    const auto count = static_cast<int>(std::count_if(std::begin(kSigns), std::end(kSigns),
                                                      [&](const Sign &sign) { return state.*sign.shown; }));
    if (count == 0) return {};
    Tile all = {count * step - size_px / 4, side, {}};
    all.pixels.resize(static_cast<size_t>(all.width) * static_cast<size_t>(all.height));
    int x = 0;
    for (const Sign &sign : kSigns) {
        if (!(state.*sign.shown)) continue;
        copy_into(all, rimmed(enlarged(sign.drawing, size_px), sign.colour, kRim_px), x);
        x += step;
    }
    return all;
}

Tile unused_mark(int size_px)
{
    const Mask mask = enlarged(kCamera, size_px);
    Tile tile = {size_px, size_px, {}};
    for (const uint8_t coverage : mask.coverage)
        tile.pixels.push_back(coverage == 0 ? uint16_t{0} : pixel_of(kDim));
    return tile;
}

} // namespace nvrec
