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

namespace nvrec
{
namespace
{

constexpr Key digit(int number)
{
    return static_cast<Key>(static_cast<int>(Key::kDigit0) + number);
}

constexpr Button kButtons[] = {
    {"up", Key::kUp, 107, 0x6699FF00, "Up"},
    {"down", Key::kDown, 120, 0x6E91FF00, "Down"},
    {"left", Key::kLeft, 98, 0x6996FF00, "Left"},
    {"right", Key::kRight, 121, 0x6B94FF00, "Right"},
    {"enter", Key::kEnter, 106, 0x6A95FF00, "Return"},
    {"enter", Key::kEnter, 106, 0x6A95FF00, "Keypad Enter"},
    {"menu", Key::kMenu, 109, 0x659AFF00, "M"},
    {"back", Key::kBack, 113, 0x6798FF00, "Backspace"},
    {"0", digit(0), 86, 0x6C93FF00, "0"},
    {"1", digit(1), 87, 0x7887FF00, "1"},
    {"2", digit(2), 88, 0x7986FF00, "2"},
    {"3", digit(3), 89, 0x7A85FF00, "3"},
    {"4", digit(4), 90, 0x748BFF00, "4"},
    {"5", digit(5), 91, 0x758AFF00, "5"},
    {"6", digit(6), 92, 0x7689FF00, "6"},
    {"7", digit(7), 93, 0x708FFF00, "7"},
    {"8", digit(8), 94, 0x718EFF00, "8"},
    {"9", digit(9), 95, 0x728DFF00, "9"},
    {"layout", Key::kNextLayout, 97, 0x6D92FF00, "L"},
    {"play", Key::kPlay, 105, 0x649BFF00, "P"},
    {"pause", Key::kPause, 102, 0x738CFF00, "Space"},
    {"stop", Key::kStop, 85, 0x6897FF00, "S"},
    {"faster", Key::kFaster, 104, 0x7788FF00, "F"},
    {"previous", Key::kPrevious, 119, 0x7C83FF00, "PageUp"},
    {"next", Key::kNext, 99, 0x7B84FF00, "PageDown"},
    {"record", Key::kRecord, 118, 0x6F90FF00, "R"},
    {"snapshot", Key::kSnapshot, 112, 0x639CFF00, "C"},
    {"zoom", Key::kZoom, 96, 0x619EFF00, "Z"},
    {"zoom-in", Key::kZoomIn, 103, 0xEB147F80, "="},
    {"zoom-in", Key::kZoomIn, 103, 0xEB147F80, "Keypad +"},
    {"zoom-out", Key::kZoomOut, 84, 0xFC037F80, "-"},
    {"zoom-out", Key::kZoomOut, 84, 0xFC037F80, "Keypad -"},
    {"mute", Key::kMute, 110, 0x7D82FF00, "X"},
    {"volume-up", Key::kVolumeUp, 101, 0xE9167F80, "."},
    {"volume-down", Key::kVolumeDown, 100, 0xEA157F80, ","},
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
