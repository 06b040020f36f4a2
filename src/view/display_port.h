/*
 * display_port.h - moving and showing a display input port: the steps that layouts and zoom share.
 *
 * A port keeps what its attributes say besides its window, so they are read, changed and written
 * back. UI thread.
 */
#pragma once

#include <cstdint>

#include "mi_disp.h"

namespace nvrhal
{

/**
 * What a failing step prints; each text takes source, line, port and code. The operations write the
 * code in different ways, and log searches know each of them.
 */
struct PortTexts {
    const char *get, *set, *show;
};

#define PORT_TEXT(text) "[%s]-%d: " text

/** The source size of a moved port: the one it has, or that of its new window. */
enum class PortSource { kKept, kAsWindow };

/** Give a port its window. 0, or -1 after a message. */
int32_t move_port(int32_t dev, uint32_t port, const MI_Rect &window, PortSource source,
                  const PortTexts &texts);

/** Show a port. 0, or -1 after a message. */
int32_t show_port(int32_t dev, uint32_t port, const PortTexts &texts);

} // namespace nvrhal
