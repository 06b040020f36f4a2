/*
 * qr_code.h - a text as a QR code on the screen: the library writes the image to a file, and this
 * reads it back.
 */
#pragma once

#include <string>

#include "screen/canvas.h"

namespace nvrec
{

/** So long a text still fits the smallest screen with its code. */
constexpr size_t kLongestQrText = 300;

/**
 * The code in black on white, quiet zone included.
 * @return an empty tile when there is no room for the file, or the text is empty or too long.
 */
Tile qr_tile(const std::string &text);

} // namespace nvrec
