/* utf8.cpp - see utf8.h. */
#include "console/utf8.h"

#include <cstdint>

namespace nvrec
{
namespace
{

constexpr char32_t kBeyondBasic = 0x10000; /* two units in UTF-16 */
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool is_high(char16_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool is_low(char16_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

void append(std::string &text, char32_t code)
{
    auto byte = [&text](char32_t value) { text += static_cast<char>(value); };
    if (code < 0x80) return byte(code);
    if (code < 0x800) {
        byte(0xC0 | code >> 6);
    } else if (code < kBeyondBasic) {
        byte(0xE0 | code >> 12);
        byte(0x80 | (code >> 6 & 0x3F));
    } else {
        byte(0xF0 | code >> 18);
        byte(0x80 | (code >> 12 & 0x3F));
        byte(0x80 | (code >> 6 & 0x3F));
    }
    byte(0x80 | (code & 0x3F));
}

} // namespace

Utf8Character utf8_character_at(std::string_view text, size_t at)
{
    const auto lead = static_cast<uint8_t>(text[at]);
    if (lead < 0x80) return {1, lead};
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() - at < length) return {};
    auto code = static_cast<char32_t>(lead & (0xFF >> (length + 1)));
    for (size_t i = 1; i < length; ++i) {
        const auto next = static_cast<uint8_t>(text[at + i]);
        if ((next & 0xC0) != 0x80) return {};
        code = code << 6 | (next & 0x3F);
    }
    constexpr char32_t kFirstOfLength[] = {0, 0, 0x80, 0x800, kBeyondBasic};
    if (code < kFirstOfLength[length] || code > 0x10FFFF) return {};
    if (code >= 0xD800 && code < 0xE000) return {}; /* a surrogate is none */
    return {length, code};
}

bool is_utf8(std::string_view text)
{
    for (size_t at = 0; at < text.size();) {
        const size_t length = utf8_character_at(text, at).length;
        if (length == 0) return false;
        at += length;
    }
    return true;
}

std::string valid_utf8(std::string_view text)
{
    std::string valid;
    for (size_t at = 0; at < text.size();) {
        const size_t length = utf8_character_at(text, at).length;
        valid += length == 0 ? kReplacement : text.substr(at, length);
        at += length == 0 ? 1 : length;
    }
    return valid;
}

std::string utf8_of(std::u16string_view units)
{
    std::string text;
    for (size_t i = 0; i < units.size(); ++i) {
        const char16_t unit = units[i];
        if (is_high(unit) && i + 1 < units.size() && is_low(units[i + 1])) {
            const char32_t high = unit - 0xD800, low = units[++i] - 0xDC00;
            append(text, kBeyondBasic + (high << 10) + low);
        } else if (is_high(unit) || is_low(unit)) {
            text += kReplacement;
        } else {
            append(text, unit);
        }
    }
    return text;
}

} // namespace nvrec
