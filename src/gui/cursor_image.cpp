/*
 * cursor_image.cpp - the mouse cursor, 32 x 32 pixels of 1-5-5-5, rows from top to bottom.
 *
 * An arrow with its tip in the top-left corner. The application copies the pixels that are not
 * background into the framebuffer; the library never draws it.
 */
#include "nvrhal.h"

const int32_t MOUSE_IMAGE_WIDTH = 32;
const int32_t MOUSE_IMAGE_HEIGHT = 32;

namespace
{

constexpr uint16_t o = 0x001F; // background
constexpr uint16_t W = 0x7FFF; // body
constexpr uint16_t K = 0x0000; // outline
constexpr uint16_t D = 0x0C6B; // outline, where it meets the body at a slope
constexpr uint16_t E = 0x0C6C; // the same, every other row

} // namespace

// clang-format off
const uint16_t CurseValue[32 * 32] = {
    K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, //  0
    K, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, //  1
    K, W, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, //  2
    K, W, D, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, //  3
    K, W, W, D, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, //  4
    K, W, W, W, E, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, //  5
    K, W, W, W, W, D, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, //  6
    K, W, W, W, W, W, E, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, //  7
    K, W, W, W, W, W, W, D, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, //  8
    K, W, W, W, W, W, W, W, E, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, //  9
    K, W, W, W, W, W, W, W, W, D, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 10
    K, W, W, W, W, W, W, K, K, K, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 11
    K, W, W, W, K, W, W, D, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 12
    K, W, W, E, K, K, W, W, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 13
    K, W, E, K, o, K, W, W, D, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 14
    K, E, K, o, o, o, K, W, W, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 15
    K, K, o, o, o, o, K, W, W, E, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 16
    K, o, o, o, o, o, o, K, W, W, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 17
    o, o, o, o, o, o, o, K, W, W, D, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 18
    o, o, o, o, o, o, o, o, K, E, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 19
    o, o, o, o, o, o, o, o, o, K, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 20
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 21
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 22
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 23
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 24
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 25
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 26
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 27
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 28
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 29
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 30
    o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, o, // 31
};
// clang-format on
