/* glyphs.cpp - see glyphs.h. */
#include "screen/glyphs.h"

#include <cstdint>
#include <vector>

#include "console/utf8.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr char32_t kBeyondBasic = 0x10000; /* two units in UTF-16 */
constexpr size_t kSpare_bytes = 4; /* the library may write a unit and an end past the size it is told */

const uint8_t *bytes_of(const std::string &text)
{
    return reinterpret_cast<const uint8_t *>(text.c_str());
}

/* Two zero bytes when it is no GB2312. */
std::vector<uint8_t> unicode_of_gb2312(const std::string &text)
{
    const int size = GetGB2312ToUnicodeLength(bytes_of(text));
    if (size < 0) return {0, 0};
    std::vector<uint8_t> unicode(static_cast<size_t>(size) + kSpare_bytes);
    if (FromGb2312ToUnicode(bytes_of(text), static_cast<int>(text.size()), unicode.data(),
                            static_cast<uint32_t>(size)) != 0)
        return {0, 0};
    return unicode;
}

std::string utf8_of_unicode(std::vector<uint8_t> unicode)
{
    constexpr size_t kMostBytesAUnit = 3;
    const auto units = static_cast<size_t>(GetUnicodeLength(unicode.data())) / 2;
    std::string text(units * kMostBytesAUnit, '\0');
    UnicodeToUTF8(unicode.data(), reinterpret_cast<uint8_t *>(text.data()), static_cast<int>(text.size()));
    return text.c_str(); /* up to the first zero byte */
}

std::string traditional(const std::string &text)
{
    std::string converted(text.size(), '\0');
    SimplifiedToTraditionalUTF8(text.c_str(), converted.data());
    return converted;
}

/* One or two units; control characters as blanks. */
void append(std::u16string &units, char32_t code)
{
    constexpr char32_t kFirstPrintable = 0x20, kDelete = 0x7F;
    if (code >= kBeyondBasic) {
        units += static_cast<char16_t>(0xD800 + ((code - kBeyondBasic) >> 10));
        units += static_cast<char16_t>(0xDC00 + ((code - kBeyondBasic) & 0x3FF));
    } else {
        units += code < kFirstPrintable || code == kDelete ? u' ' : static_cast<char16_t>(code);
    }
}

} // namespace

/* The library's tables have characters of the basic plane alone: each is converted by itself. */
std::u16string units_of(const std::string &text, ChineseScript script)
{
    const std::string utf8 = is_utf8(text) ? text : utf8_of_unicode(unicode_of_gb2312(text));
    std::u16string units;
    for (size_t at = 0; at < utf8.size();) {
        Utf8Character character = utf8_character_at(utf8, at);
        if (character.length == 0) return {};
        if (character.length == 3 && script == ChineseScript::kTraditional) {
            const std::string other = traditional(utf8.substr(at, character.length));
            if (is_utf8(other) && !other.empty() && other[0] != 0)
                character.code = utf8_character_at(other, 0).code;
        }
        append(units, character.code);
        at += character.length;
    }
    return units;
}

} // namespace nvrec
