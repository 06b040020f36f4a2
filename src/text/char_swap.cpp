/*
 * char_swap.cpp - GB2312 and Unicode.
 *
 * GB2312 text: bytes below 161 are themselves; a byte of 161 or more and the one after it are one
 * character, high byte first. It ends at a zero byte or at a given length.
 * Unicode text: units of two bytes, high byte first, ended by a zero unit at an even offset.
 *
 * Threads: any; the set-up of TableLen happens once, whoever comes first.
 */
#include "core/log.h"
#include "core/shared_word.h"
#include "nvrhal.h"
#include "text/messages.h"
#include "text/word_scan.h"

#include <pthread.h>

// Rows of Unicode_GB2312 that are searched. Written by InitTransformationTable once and by the
// application, read by every conversion.
long TableLen = 0;

namespace nvrhal
{
namespace
{

constexpr long kRows = sizeof Unicode_GB2312 / sizeof Unicode_GB2312[0];
constexpr uint8_t kFirstHanziByte = 161;
constexpr int kUnitBytes = 2;

static_assert(sizeof(UnicodeGb2312) == kWordBytes);

// Guards the one-time set-up of TableLen.
pthread_once_t table_once = PTHREAD_ONCE_INIT;

void init_table_len()
{
    store_word(TableLen, kRows);
    log_text("TableLen = %ld\n", kRows);
}

size_t searched_rows()
{
    const long length = load_word(TableLen);
    if (length < 0) return 0;
    return static_cast<size_t>(length < kRows ? length : kRows);
}

/** The first searched row that holds `key` in the half that `mask` selects, or null. */
const UnicodeGb2312 *find_row(uint16_t key, const UnicodeGb2312 &want, const UnicodeGb2312 &mask)
{
    const size_t rows = searched_rows();
    const size_t row = scan_words(Unicode_GB2312, rows, key, word_at(&mask, 0), word_at(&want, 0));
    return row < rows ? &Unicode_GB2312[row] : nullptr;
}

const UnicodeGb2312 *find_unicode(uint16_t code_point)
{
    return find_row(code_point, {code_point, 0}, {0xFFFF, 0});
}

const UnicodeGb2312 *find_gb2312(uint16_t code)
{
    return find_row(code, {0, code}, {0, 0xFFFF});
}

uint16_t big_endian(const uint8_t *bytes)
{
    return static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
}

void put_big_endian(uint8_t *bytes, uint16_t value)
{
    bytes[0] = static_cast<uint8_t>(value >> 8);
    bytes[1] = static_cast<uint8_t>(value);
}

} // namespace
} // namespace nvrhal

using namespace nvrhal;

extern "C" int InitTransformationTable(void)
{
    pthread_once(&table_once, init_table_len);
    return 0;
}

extern "C" int GetGB2312ToUnicodeLength(const uint8_t *gb2312)
{
    if (!gb2312) return -1;

    int units = 0;
    for (const uint8_t *at = gb2312; *at; ++at, ++units) {
        if (*at < kFirstHanziByte) continue;
        if (*++at < kFirstHanziByte) {
            log_error_line(kTextSource, kBadString);
            return -1;
        }
    }
    return kUnitBytes * units + kUnitBytes;
}

extern "C" int FromGb2312ToUnicode(const uint8_t *gb2312, int length, uint8_t *out, uint32_t out_size)
{
    if (!gb2312 || !out) return -1;
    log_text("len=%d, pInGb2312: %.*s\n", length, length > 0 ? length : 0,
             reinterpret_cast<const char *>(gb2312));
    InitTransformationTable();

    if (length < 1) {
        put_big_endian(out, 0);
        return 0;
    }
    if (out_size < kUnitBytes) {
        log_error_line(kTextSource, kNoRoom);
        return -1;
    }

    const uint32_t room = out_size / kUnitBytes * kUnitBytes;
    uint32_t written = 0;
    for (int at = 0; at < length;) {
        uint16_t unit = gb2312[at++];
        if (unit >= kFirstHanziByte) {
            if (at == length) {
                log_error_line(kTextSource, kBrokenString);
                return -1;
            }
            const UnicodeGb2312 *row = find_gb2312(big_endian(gb2312 + at - 1));
            ++at;
            if (!row) {
                log_error_line(kTextSource, kNotInTable);
                return -1;
            }
            unit = row->unicode;
        }
        put_big_endian(out + written, unit);
        written += kUnitBytes;
        if (at < length && written == room) {
            log_error_line(kTextSource, kNoRoom);
            return -1;
        }
    }
    // Not checked against the room, on purpose: when the last unit ends at the limit, the zero unit is
    // written behind the limit.
    put_big_endian(out + written, 0);
    return 0;
}

extern "C" int GetUnicodeLength(const uint8_t *unicode)
{
    if (!unicode) return -1;

    const uint8_t *end = unicode;
    while (big_endian(end) != 0)
        end += kUnitBytes;
    return static_cast<int>(end - unicode);
}

extern "C" int GetUnicodeToGB2312Length(const uint8_t *unicode)
{
    const int length = GetUnicodeLength(unicode);
    if (length < 0) return -1;

    // This walks bytes, not units, on purpose: the result is an upper bound and may be too large.
    int index = 0;
    while (index < length)
        index += unicode[index] == 0 ? 1 : 2;
    return index + 1;
}

extern "C" int FromUnicodeToGb2312(const uint8_t *unicode, uint32_t length, uint8_t *out, int out_size)
{
    if (!unicode || !out) return -1;
    if (length % kUnitBytes != 0) {
        log_error_line(kTextSource, kBrokenString);
        return -1;
    }
    InitTransformationTable();

    int written = 0;
    for (uint32_t at = 0; at < length; at += kUnitBytes) {
        const uint16_t unit = big_endian(unicode + at);
        const int bytes = unit < kFirstHanziByte ? 1 : 2;
        if (out_size - written < bytes) {
            log_error_line(kTextSource, kNoRoom);
            return -1;
        }
        if (bytes == 1) {
            out[written++] = static_cast<uint8_t>(unit);
            continue;
        }
        const UnicodeGb2312 *row = find_unicode(unit);
        if (!row) {
            log_error_line(kTextSource, kNotInTable);
            return -1;
        }
        put_big_endian(out + written, row->gb2312);
        written += 2;
    }
    // Not checked against the room either: the zero byte of a text that fills it is written behind it.
    out[written] = 0;
    return 0;
}
