/*
 * qr_code.h - makes a QR code of a text for the screen: the library writes the image to a file, which is read
 * back here.
 */
#pragma once

#include <string>

#include "screen/canvas.h"

namespace nvrec
{

/** The longest text whose code fits the smallest screen. */
constexpr size_t kLongestQrText = 300;

/**
 * The code in black on white, quiet zone included.
 * @return an empty tile when there is no room for the file, or the text is empty or too long.
 */
Tile qr_tile(const std::string &text);

} // namespace nvrec
