/*
 * key_names.cpp - see key_names.h.
 *
 * The layout follows the rows of four in which the codes of the large remote control lie (command
 * 0x60 + 4 * row + column, platform/include/ir_buttons.h); the keys of volume and digital zoom are on the
 * small one:
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
    {"up", Key::kUp, KEY_CODE_UP, "Up"},
    {"down", Key::kDown, KEY_CODE_DOWN, "Down"},
    {"left", Key::kLeft, KEY_CODE_LEFT, "Left"},
    {"right", Key::kRight, KEY_CODE_RIGHT, "Right"},
    {"enter", Key::kEnter, KEY_CODE_ENTER, "Return"},
    {"enter", Key::kEnter, KEY_CODE_ENTER, "Keypad Enter"},
    {"menu", Key::kMenu, KEY_CODE_MENU, "M"},
    {"back", Key::kBack, KEY_CODE_BACK, "Backspace"},
    {"0", digit(0), KEY_CODE_0, "0"},
    {"1", digit(1), KEY_CODE_1, "1"},
    {"2", digit(2), KEY_CODE_2, "2"},
    {"3", digit(3), KEY_CODE_3, "3"},
    {"4", digit(4), KEY_CODE_4, "4"},
    {"5", digit(5), KEY_CODE_5, "5"},
    {"6", digit(6), KEY_CODE_6, "6"},
    {"7", digit(7), KEY_CODE_7, "7"},
    {"8", digit(8), KEY_CODE_8, "8"},
    {"9", digit(9), KEY_CODE_9, "9"},
    {"layout", Key::kNextLayout, KEY_CODE_LAYOUT, "L"},
    {"play", Key::kPlay, KEY_CODE_PLAY, "P"},
    {"pause", Key::kPause, KEY_CODE_PAUSE, "Space"},
    {"stop", Key::kStop, KEY_CODE_STOP, "S"},
    {"faster", Key::kFaster, KEY_CODE_FASTER, "F"},
    {"previous", Key::kPrevious, KEY_CODE_PREVIOUS, "PageUp"},
    {"next", Key::kNext, KEY_CODE_NEXT, "PageDown"},
    {"record", Key::kRecord, KEY_CODE_RECORD, "R"},
    {"snapshot", Key::kSnapshot, KEY_CODE_SNAPSHOT, "C"},
    {"zoom", Key::kZoom, KEY_CODE_ZOOM, "Z"},
    {"zoom-in", Key::kZoomIn, KEY_CODE_ZOOM_IN, "="},
    {"zoom-in", Key::kZoomIn, KEY_CODE_ZOOM_IN, "Keypad +"},
    {"zoom-out", Key::kZoomOut, KEY_CODE_ZOOM_OUT, "-"},
    {"zoom-out", Key::kZoomOut, KEY_CODE_ZOOM_OUT, "Keypad -"},
    {"mute", Key::kMute, KEY_CODE_MUTE, "X"},
    {"volume-up", Key::kVolumeUp, KEY_CODE_VOLUME_UP, "."},
    {"volume-down", Key::kVolumeDown, KEY_CODE_VOLUME_DOWN, ","},
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
