/*
 * utf8.cpp - Unicode units (two bytes, high byte first, ended by a zero unit) and UTF-8.
 *
 * A UTF-8 character is as long as its lead byte has leading ones; the bytes after the lead byte
 * are not checked. A character that the end of the text cuts off ends there.
 * Threads: any.
 */
#include "text/utf8.h"
#include "core/log.h"
#include "nvrhal.h"
#include "text/messages.h"

#include <climits>

namespace nvrhal
{

namespace
{

constexpr int kUnitBytes = 2;

int no_room()
{
    log_error_line(kTextSource, kNoRoom);
    return -1;
}

int utf8_bytes_of(uint16_t unit)
{
    if (unit < 0x80) return 1;
    return unit < 0x800 ? 2 : 3;
}

void put_utf8(uint8_t *out, uint16_t unit, int bytes)
{
    constexpr uint8_t kLeadOnes[] = {0, 0x00, 0xC0, 0xE0};
    for (int at = bytes - 1; at > 0; --at, unit >>= 6)
        out[at] = static_cast<uint8_t>(0x80 | (unit & 0x3F));
    out[0] = static_cast<uint8_t>(kLeadOnes[bytes] | unit);
}

/** The value of a character of `bytes` bytes, of which `present` are there; the others count 0. */
uint64_t utf8_value(const char *character, int bytes, int present)
{
    uint64_t value = static_cast<uint8_t>(character[0]) & 0xFF >> bytes;
    for (int at = 1; at < bytes; ++at)
        value = value << 6 | (at < present ? static_cast<uint64_t>(character[at] & 0x3F) : 0);
    return value;
}

} // namespace
} // namespace nvrhal

using namespace nvrhal;

extern "C" int GetUnicodeToUTF8Length(const uint8_t *unicode)
{
    const int length = GetUnicodeLength(unicode);
    if (length < 0) return -1;

    int64_t bytes = 1;
    for (int at = 0; at < length; at += kUnitBytes) {
        // Signed on purpose: units from 0x8000 on count one byte here and are written as three.
        const auto unit = static_cast<int16_t>(unicode[at] << 8 | unicode[at + 1]);
        bytes += unit <= 127 ? 1 : utf8_bytes_of(static_cast<uint16_t>(unit));
    }
    return bytes < INT_MAX ? static_cast<int>(bytes) : INT_MAX;
}

extern "C" int UnicodeToUTF8(const uint8_t *unicode, uint8_t *out, int out_size)
{
    if (!unicode || !out) return no_room();

    const int length = GetUnicodeLength(unicode);
    int written = 0;
    for (int at = 0; at < length; at += kUnitBytes) {
        const auto unit = static_cast<uint16_t>(unicode[at] << 8 | unicode[at + 1]);
        const int bytes = utf8_bytes_of(unit);
        if (out_size - written < bytes) return no_room();
        put_utf8(out + written, unit, bytes);
        written += bytes;
    }
    return 0;
}

extern "C" int GetUtf8ByteNumber(uint8_t lead, uint8_t *payload_mask)
{
    const int ones = leading_ones(lead);
    if (payload_mask) *payload_mask = static_cast<uint8_t>(0xFF >> ones);
    return ones;
}

extern "C" int GetUTF8ToUnicodeLength(const char *utf8)
{
    if (!utf8) return -1;

    int units = 0;
    for (; *utf8 != '\0'; ++units)
        utf8 += utf8_character_bytes(utf8, leading_ones(static_cast<uint8_t>(*utf8)));
    return kUnitBytes * units + 1;
}

extern "C" int UTF8ToUnicode(const char *utf8, uint8_t *out, int out_size)
{
    if (!utf8 || !out) return no_room();

    int written = 0;
    while (*utf8 != '\0') {
        // Not "written + 2 > out_size", on purpose: the last unit may begin at the end of the room.
        if (written > out_size) return no_room();
        const int bytes = leading_ones(static_cast<uint8_t>(*utf8));
        const int present = utf8_character_bytes(utf8, bytes);
        const uint64_t value = utf8_value(utf8, bytes, present);
        out[written] = static_cast<uint8_t>(value >> 8);
        out[written + 1] = static_cast<uint8_t>(value);
        written += kUnitBytes;
        utf8 += present;
    }
    return 0;
}
