/* A plain implementation of the text conversions; see text_reference.h. */
#include "text_reference.h"

#include "nvrhal.h"

#include <algorithm>
#include <cstring>

namespace reference
{

const std::string kBadString = "GetGB2312ToUnicodeLength:\xB4\xED\xCE\xF3\xD7\xD6\xB7\xFB\xB4\xAE";
const std::string kNoRoom = "\xCA\xE4\xB3\xF6\xBF\xD5\xBC\xE4\xB2\xBB\xD7\xE3";
const std::string kNotInTable = "\xCA\xE4\xC8\xEB\xD7\xD6\xB7\xFB\xB4\xAE\xD6\xD0\xB4\xE6\xD4\xDA\xD7\xAA"
                                "\xBB\xBB\xB1\xED\xD6\xD0\xC3\xBB\xD3\xD0\xB5\xC4\xBA\xBA\xD7\xD6\xA3\xAC"
                                "\xD7\xAA\xBB\xBB\xCA\xA7\xB0\xDC!";
const std::string kBrokenString = "\xD7\xD6\xB7\xFB\xB4\xAE\xD3\xD0\xB4\xED!";

namespace
{

long rows()
{
    return std::clamp(TableLen, 0L, 7445L);
}

void put_unit(Bytes &out, unsigned unit)
{
    out.push_back(static_cast<uint8_t>(unit >> 8));
    out.push_back(static_cast<uint8_t>(unit));
}

Conversion failed(Bytes written, const std::string &message)
{
    return {-1, std::move(written), message};
}

/** The bytes that a lead byte at `at` announces, as far as the text has them. */
Bytes character_at(const Bytes &utf8, size_t at)
{
    size_t bytes = static_cast<size_t>(utf8_byte_number(utf8[at], nullptr));
    bytes = std::min(bytes, utf8.size() - at);
    return Bytes(utf8.begin() + static_cast<long>(at), utf8.begin() + static_cast<long>(at + bytes));
}

} // namespace

int unicode_of_gb2312(unsigned code)
{
    for (long row = 0; row < rows(); ++row)
        if (Unicode_GB2312[row].gb2312 == code) return Unicode_GB2312[row].unicode;
    return -1;
}

int gb2312_of_unicode(unsigned code_point)
{
    for (long row = 0; row < rows(); ++row)
        if (Unicode_GB2312[row].unicode == code_point) return Unicode_GB2312[row].gb2312;
    return -1;
}

int gb2312_to_unicode_length(const Bytes &gb2312)
{
    int units = 0;
    for (size_t at = 0; at < gb2312.size(); ++units) {
        if (gb2312[at] <= 160)
            at += 1;
        else if (at + 1 < gb2312.size() && gb2312[at + 1] >= 161)
            at += 2;
        else
            return -1;
    }
    return 2 * units + 2;
}

Conversion gb2312_to_unicode(const Bytes &gb2312, int length, uint32_t out_size)
{
    Bytes out;
    if (length < 1) {
        put_unit(out, 0);
        return {0, out, ""};
    }
    if (out_size < 2) return failed(out, kNoRoom);

    const auto end = static_cast<size_t>(length);
    for (size_t at = 0; at < end;) {
        if (gb2312[at] < 161) {
            put_unit(out, gb2312[at]);
            at += 1;
        } else {
            if (at + 1 >= end) return failed(out, kBrokenString);
            const int unit = unicode_of_gb2312(gb2312[at] * 256u + gb2312[at + 1]);
            if (unit < 0) return failed(out, kNotInTable);
            put_unit(out, static_cast<unsigned>(unit));
            at += 2;
        }
        if (at < end && out.size() == out_size - out_size % 2) return failed(out, kNoRoom);
    }
    put_unit(out, 0);
    return {0, out, ""};
}

int unicode_to_gb2312_length(const Bytes &unicode)
{
    size_t index = 0;
    while (index < unicode.size())
        index += unicode[index] == 0 ? 1 : 2;
    return static_cast<int>(index) + 1;
}

Conversion unicode_to_gb2312(const Bytes &unicode, int out_size)
{
    Bytes out;
    if (unicode.size() % 2 == 1) return failed(out, kBrokenString);
    for (size_t at = 0; at < unicode.size(); at += 2) {
        const auto index = static_cast<int>(out.size());
        if (unicode[at] == 0 && unicode[at + 1] < 161) {
            if (index >= out_size) return failed(out, kNoRoom);
            out.push_back(unicode[at + 1]);
            continue;
        }
        if (index + 1 >= out_size) return failed(out, kNoRoom);
        const int code = gb2312_of_unicode(unicode[at] * 256u + unicode[at + 1]);
        if (code < 0) return failed(out, kNotInTable);
        put_unit(out, static_cast<unsigned>(code));
    }
    out.push_back(0);
    return {0, out, ""};
}

int unicode_to_utf8_length(const Bytes &unicode)
{
    int bytes = 0;
    for (size_t at = 0; at < unicode.size(); at += 2) {
        int unit = unicode[at] * 256 + unicode[at + 1];
        if (unit >= 0x8000) unit -= 0x10000;
        bytes += unit <= 127 ? 1 : unit < 0x800 ? 2 : 3;
    }
    return bytes + 1;
}

Conversion unicode_to_utf8(const Bytes &unicode, int out_size)
{
    Bytes out;
    for (size_t at = 0; at < unicode.size(); at += 2) {
        const unsigned unit = unicode[at] * 256u + unicode[at + 1];
        Bytes character;
        if (unit < 0x80)
            character = {static_cast<uint8_t>(unit)};
        else if (unit < 0x800)
            character = {static_cast<uint8_t>(0xC0 + unit / 64), static_cast<uint8_t>(0x80 + unit % 64)};
        else
            character = {static_cast<uint8_t>(0xE0 + unit / 4096),
                         static_cast<uint8_t>(0x80 + unit / 64 % 64), static_cast<uint8_t>(0x80 + unit % 64)};
        const auto last_index = static_cast<int>(out.size() + character.size() - 1);
        if (last_index >= out_size) return failed(out, kNoRoom);
        out.insert(out.end(), character.begin(), character.end());
    }
    return {0, out, ""};
}

int utf8_byte_number(uint8_t lead, uint8_t *payload_mask)
{
    // The number of leading ones is told by the lead byte's place among these bounds.
    const int ones = lead < 0x80   ? 0
                     : lead < 0xC0 ? 1
                     : lead < 0xE0 ? 2
                     : lead < 0xF0 ? 3
                     : lead < 0xF8 ? 4
                     : lead < 0xFC ? 5
                     : lead < 0xFE ? 6
                     : lead < 0xFF ? 7
                                   : 8;
    static const uint8_t masks[] = {0xFF, 0x7F, 0x3F, 0x1F, 0x0F, 0x07, 0x03, 0x01, 0x00};
    if (payload_mask) *payload_mask = masks[ones];
    return ones;
}

int utf8_to_unicode_length(const Bytes &utf8)
{
    int units = 0;
    for (size_t at = 0; at < utf8.size(); ++units)
        at += utf8[at] < 0x80 ? 1 : character_at(utf8, at).size();
    return 2 * units + 1;
}

Conversion utf8_to_unicode(const Bytes &utf8, int out_size)
{
    Bytes out;
    for (size_t at = 0; at < utf8.size();) {
        if (static_cast<int>(out.size()) > out_size) return failed(out, kNoRoom);
        if (utf8[at] < 0x80) {
            put_unit(out, utf8[at]);
            at += 1;
            continue;
        }
        const Bytes character = character_at(utf8, at);
        uint8_t mask;
        const int bytes = utf8_byte_number(utf8[at], &mask);
        uint64_t value = static_cast<uint64_t>(utf8[at] & mask) << (6 * (bytes - 1));
        for (size_t i = 1; i < character.size(); ++i)
            value |= static_cast<uint64_t>(character[i] & 0x3F) << (6 * (bytes - 1 - static_cast<int>(i)));
        put_unit(out, static_cast<unsigned>(value & 0xFFFF));
        at += character.size();
    }
    return {0, out, ""};
}

Bytes swap_characters(const Bytes &utf8, const char *const *searched, const char *const *replacements)
{
    Bytes out;
    for (size_t at = 0; at < utf8.size();) {
        if (utf8[at] < 0x80) {
            out.push_back(utf8[at++]);
            continue;
        }
        Bytes character = character_at(utf8, at);
        at += character.size();
        if (character.size() < static_cast<size_t>(utf8_byte_number(character[0], nullptr))) {
            out.insert(out.end(), character.begin(), character.end());
            continue;
        }
        const char *replacement = nullptr;
        for (int index = 0; index < 3755; ++index) {
            const char *entry = searched[index];
            if (!entry) continue;
            if (std::strcmp(entry, "END") == 0) break;
            if (std::strncmp(entry, reinterpret_cast<const char *>(character.data()), character.size()) != 0)
                continue;
            replacement = replacements[index];
            break;
        }
        if (replacement) {
            const Bytes text(replacement, replacement + std::strlen(replacement));
            character = text.empty() || text[0] < 0x80 ? Bytes() : character_at(text, 0);
        }
        out.insert(out.end(), character.begin(), character.end());
    }
    return out;
}

} // namespace reference
