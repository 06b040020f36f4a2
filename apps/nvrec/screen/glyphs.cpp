/* glyphs.cpp - see glyphs.h. */
#include "screen/glyphs.h"

#include <cstdint>
#include <vector>

#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr size_t kSpare_bytes = 4; /* the library may write a unit and an end past the size it is told */

const uint8_t *bytes_of(const std::string &text)
{
    return reinterpret_cast<const uint8_t *>(text.c_str());
}

/* Units of two bytes, high byte first, up to a zero unit. */
std::u16string joined(const std::vector<uint8_t> &unicode)
{
    constexpr char16_t kFirstPrintable = 0x20, kDelete = 0x7F;
    const int length = GetUnicodeLength(unicode.data());
    std::u16string units;
    for (int i = 0; i + 1 < length; i += 2) {
        const auto unit =
            static_cast<char16_t>(unicode[static_cast<size_t>(i)] << 8 | unicode[static_cast<size_t>(i) + 1]);
        units += unit < kFirstPrintable || unit == kDelete ? u' ' : unit;
    }
    return units;
}

std::vector<uint8_t> unicode_of_utf8(const std::string &text)
{
    const size_t size = static_cast<size_t>(GetUTF8ToUnicodeLength(text.c_str()));
    std::vector<uint8_t> unicode(size + kSpare_bytes);
    if (UTF8ToUnicode(text.c_str(), unicode.data(), static_cast<int>(size)) != 0) unicode.assign(2, 0);
    return unicode;
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

std::string utf8_of(std::vector<uint8_t> unicode)
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

} // namespace

bool is_utf8(const std::string &text)
{
    for (size_t i = 0; i < text.size();) {
        uint8_t payload = 0;
        const auto lead = static_cast<uint8_t>(text[i]);
        const int bytes = GetUtf8ByteNumber(lead, &payload);
        ++i;
        if (bytes == 0) continue;
        if (bytes < 2 || bytes > 3 || text.size() - i < static_cast<size_t>(bytes - 1)) return false;
        uint32_t code = lead & payload;
        for (int rest = 1; rest < bytes; ++rest, ++i) {
            const auto next = static_cast<uint8_t>(text[i]);
            if ((next & 0xC0) != 0x80) return false;
            code = code << 6 | (next & 0x3F);
        }
        if (code < (bytes == 2 ? 0x80u : 0x800u)) return false; /* longer than it need be */
        if (code >= 0xD800 && code < 0xE000) return false;      /* a surrogate            */
    }
    return true;
}

std::u16string units_of(const std::string &text, ChineseScript script)
{
    const std::string utf8 = is_utf8(text) ? text : utf8_of(unicode_of_gb2312(text));
    return joined(unicode_of_utf8(script == ChineseScript::kTraditional ? traditional(utf8) : utf8));
}

} // namespace nvrec
