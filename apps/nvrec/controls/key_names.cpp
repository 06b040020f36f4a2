/*
 * key_names.cpp - see key_names.h.
 *
 * The layout follows the rows of four in which the codes of the large remote control lie (command
 * 0x60 + 4 * row + column); the keys of volume and digital zoom are on the small one:
 *
 *               zoom             snapshot
 *     play      menu     up      back
 *     stop      left     enter   right
 *     0         layout   down    record
 *     7         8        9       pause
 *     4         5        6       faster
 *     1         2        3       next
 *     previous  mute
 */
#include "controls/key_names.h"

#include <algorithm>
#include <cctype>

#include "nvrhal/key_codes.h"

namespace nvrec
{
namespace
{

constexpr Key digit(int number)
{
    return static_cast<Key>(static_cast<int>(Key::kDigit0) + number);
}

constexpr Button kButtons[] = {
    {"up", Key::kUp, KEY_CODE_UP, 0x6699FF00, "Up"},
    {"down", Key::kDown, KEY_CODE_DOWN, 0x6E91FF00, "Down"},
    {"left", Key::kLeft, KEY_CODE_LEFT, 0x6996FF00, "Left"},
    {"right", Key::kRight, KEY_CODE_RIGHT, 0x6B94FF00, "Right"},
    {"enter", Key::kEnter, KEY_CODE_ENTER, 0x6A95FF00, "Return"},
    {"enter", Key::kEnter, KEY_CODE_ENTER, 0x6A95FF00, "Keypad Enter"},
    {"menu", Key::kMenu, KEY_CODE_MENU, 0x659AFF00, "M"},
    {"back", Key::kBack, KEY_CODE_BACK, 0x6798FF00, "Backspace"},
    {"0", digit(0), KEY_CODE_0, 0x6C93FF00, "0"},
    {"1", digit(1), KEY_CODE_1, 0x7887FF00, "1"},
    {"2", digit(2), KEY_CODE_2, 0x7986FF00, "2"},
    {"3", digit(3), KEY_CODE_3, 0x7A85FF00, "3"},
    {"4", digit(4), KEY_CODE_4, 0x748BFF00, "4"},
    {"5", digit(5), KEY_CODE_5, 0x758AFF00, "5"},
    {"6", digit(6), KEY_CODE_6, 0x7689FF00, "6"},
    {"7", digit(7), KEY_CODE_7, 0x708FFF00, "7"},
    {"8", digit(8), KEY_CODE_8, 0x718EFF00, "8"},
    {"9", digit(9), KEY_CODE_9, 0x728DFF00, "9"},
    {"layout", Key::kNextLayout, KEY_CODE_LAYOUT, 0x6D92FF00, "L"},
    {"play", Key::kPlay, KEY_CODE_PLAY, 0x649BFF00, "P"},
    {"pause", Key::kPause, KEY_CODE_PAUSE, 0x738CFF00, "Space"},
    {"stop", Key::kStop, KEY_CODE_STOP, 0x6897FF00, "S"},
    {"faster", Key::kFaster, KEY_CODE_FASTER, 0x7788FF00, "F"},
    {"previous", Key::kPrevious, KEY_CODE_PREVIOUS, 0x7C83FF00, "PageUp"},
    {"next", Key::kNext, KEY_CODE_NEXT, 0x7B84FF00, "PageDown"},
    {"record", Key::kRecord, KEY_CODE_RECORD, 0x6F90FF00, "R"},
    {"snapshot", Key::kSnapshot, KEY_CODE_SNAPSHOT, 0x639CFF00, "C"},
    {"zoom", Key::kZoom, KEY_CODE_ZOOM, 0x619EFF00, "Z"},
    {"zoom-in", Key::kZoomIn, KEY_CODE_ZOOM_IN, 0xEB147F80, "="},
    {"zoom-in", Key::kZoomIn, KEY_CODE_ZOOM_IN, 0xEB147F80, "Keypad +"},
    {"zoom-out", Key::kZoomOut, KEY_CODE_ZOOM_OUT, 0xFC037F80, "-"},
    {"zoom-out", Key::kZoomOut, KEY_CODE_ZOOM_OUT, 0xFC037F80, "Keypad -"},
    {"mute", Key::kMute, KEY_CODE_MUTE, 0x7D82FF00, "X"},
    {"volume-up", Key::kVolumeUp, KEY_CODE_VOLUME_UP, 0xE9167F80, "."},
    {"volume-down", Key::kVolumeDown, KEY_CODE_VOLUME_DOWN, 0xEA157F80, ","},
};

constexpr bool every_key_has_a_button()
{
    for (int key = 0; key <= static_cast<int>(Key::kVolumeDown); ++key) {
        const bool found = std::ranges::any_of(
            kButtons, [key](const Button &button) { return static_cast<int>(button.key) == key; });
        if (!found) return false;
    }
    return true;
}
static_assert(every_key_has_a_button());

constexpr bool same_codes_mean_the_same_button()
{
    for (const Button &one : kButtons) {
        for (const Button &other : kButtons) {
            const bool same = one.name == other.name;
            if (same != (one.key == other.key) || same != (one.key_code == other.key_code)) return false;
            if (same != (one.ir_code == other.ir_code)) return false;
        }
    }
    return true;
}
static_assert(same_codes_mean_the_same_button());

bool is_same_text(std::string_view one, std::string_view other)
{
    return std::ranges::equal(
        one, other, [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

} // namespace

std::span<const Button> buttons()
{
    return kButtons;
}

const Button *button_named(std::string_view name)
{
    const auto found =
        std::ranges::find_if(kButtons, [&](const Button &button) { return is_same_text(button.name, name); });
    return found != std::end(kButtons) ? &*found : nullptr;
}

const Button *button_sending(uint32_t key_code)
{
    const auto found = std::ranges::find(kButtons, key_code, &Button::key_code);
    return found != std::end(kButtons) ? &*found : nullptr;
}

} // namespace nvrec
