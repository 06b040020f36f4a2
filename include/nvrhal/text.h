/*
 * text.h - GB2312, Unicode and UTF-8; simplified and traditional characters.
 */
#ifndef NVRHAL_TEXT_H
#define NVRHAL_TEXT_H

#include <stdint.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * "Unicode" text here: units of two bytes, high byte first, ended by a zero unit at an even offset.
 * GB2312 text: bytes below 161 stand for themselves, a byte of 161 or more and the next one are one
 * character. A failure prints its message, in GB2312; what has been written by then stays.
 */

/** A character of GB2312. */
typedef struct UnicodeGb2312 {
    uint16_t unicode; /* 0  code point                              */
    uint16_t gb2312;  /* 2  first byte in the high half, then second */
} UnicodeGb2312;

/**
 * All characters of GB2312, sorted by code point. Look-ups read it from the first row on and take
 * the first match; the application may change rows while no conversion runs.
 */
extern NVRHAL_API UnicodeGb2312 Unicode_GB2312[7445];

/** Rows of Unicode_GB2312 that are searched: 0 until InitTransformationTable sets it to 7445. */
extern NVRHAL_API long TableLen;

/**
 * Hanzi of everyday use, simplified (JTFontlib) and traditional (FTFontlib) at the same index: 3754
 * UTF-8 texts of one character, then "END". Searched from the first entry to "END", first match
 * wins; the application may set entries while no conversion runs, and keeps what they point to.
 */
extern NVRHAL_API const char *JTFontlib[3755];

/** The traditional characters of JTFontlib's. */
extern NVRHAL_API const char *FTFontlib[3755];

/**
 * Set TableLen on the first call; later calls do nothing. The conversions call it.
 * @return 0
 * Errors: none.
 * Thread: any.
 */
NVRHAL_API int InitTransformationTable(void);

/**
 * Bytes that the Unicode form of a text takes, with its end.
 * @param gb2312  zero-terminated
 * @return bytes, 2 or more; or -1
 * Errors: -1 for null, or a byte above 160 without one of 161 or more behind it.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int GetGB2312ToUnicodeLength(const uint8_t *gb2312);

/**
 * GB2312 to Unicode.
 * @param gb2312    the text
 * @param length    bytes at gb2312, 1 or more; below 1 writes the zero unit only, whatever out_size says
 * @param out       the units and a zero unit. The zero unit is not checked against out_size: leave two
 *                  spare bytes behind it.
 * @param out_size  bytes at out for the units, 0 or more; an odd number counts as one less
 * @return 0, or -1
 * Errors: -1 for null, no room, a character cut off by length, or one that is not in the table.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int FromGb2312ToUnicode(const uint8_t *gb2312, int length, uint8_t *out, uint32_t out_size);

/**
 * Bytes of a Unicode text before its zero unit.
 * @param unicode  ended by a zero unit
 * @return bytes, 0 or more, even; or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int GetUnicodeLength(const uint8_t *unicode);

/**
 * A loose upper bound of the bytes that FromUnicodeToGb2312 writes.
 * @param unicode  ended by a zero unit
 * @return bytes, 1 or more; or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int GetUnicodeToGB2312Length(const uint8_t *unicode);

/**
 * Unicode to GB2312.
 * @param unicode   the units; zero units among them are converted too
 * @param length    bytes at unicode, 0 or more, even
 * @param out       the text and a zero byte. The zero byte is not checked against out_size: leave two
 *                  spare bytes behind it.
 * @param out_size  bytes at out for the text, 0 or more
 * @return 0, or -1
 * Errors: -1 for null, no room, an odd length, or a character that is not in the table.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int FromUnicodeToGb2312(const uint8_t *unicode, uint32_t length, uint8_t *out, int out_size);

/**
 * Bytes of the UTF-8 form and one more. Units from 0x8000 on count one byte although UnicodeToUTF8
 * writes three for them: for text with such units take 3 bytes a unit instead.
 * @param unicode  ended by a zero unit
 * @return bytes, 1 or more; or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int GetUnicodeToUTF8Length(const uint8_t *unicode);

/**
 * Unicode to UTF-8, unit by unit; surrogates are not joined. Writes no terminator.
 * @param unicode   ended by a zero unit
 * @param out       the text
 * @param out_size  bytes at out, 0 or more
 * @return 0, or -1
 * Errors: -1 for null or no room.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int UnicodeToUTF8(const uint8_t *unicode, uint8_t *out, int out_size);

/**
 * The length of a UTF-8 character, told by its first byte.
 * @param lead          any value
 * @param payload_mask  out: the bits of lead that are not its leading ones; null is skipped
 * @return the number of leading one bits: 0 for ASCII, 1 for a continuation byte, 2 to 8
 * Errors: none.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int GetUtf8ByteNumber(uint8_t lead, uint8_t *payload_mask);

/**
 * 2 bytes for each UTF-8 character, and 1.
 * @param utf8  zero-terminated
 * @return bytes, 1 or more; or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int GetUTF8ToUnicodeLength(const char *utf8);

/**
 * UTF-8 to Unicode; of code points above 0xFFFF the low 16 bits. Continuation bytes are not checked;
 * bytes that the end of the text cuts off count as zero bits. Writes no terminator.
 * @param utf8      zero-terminated
 * @param out       the units. One unit past out_size may be written: leave two spare bytes behind it.
 * @param out_size  bytes at out, 0 or more
 * @return 0, or -1
 * Errors: -1 for null or no room.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int UTF8ToUnicode(const char *utf8, uint8_t *out, int out_size);

/**
 * Replace traditional by simplified characters in UTF-8 text; everything else is copied. Writes no
 * terminator.
 * @param in   zero-terminated
 * @param out  zeroed by the caller and at least as large as in; may be in itself. Entries of JTFontlib
 *             that the application set may be longer than what they replace.
 * @return 0, or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int TraditionalToSimplifiedUTF8(const char *in, char *out);

/**
 * Replace simplified by traditional characters in UTF-8 text; everything else is copied. Writes no
 * terminator.
 * @param in   zero-terminated
 * @param out  zeroed by the caller and at least as large as in; may be in itself. Entries of FTFontlib
 *             that the application set may be longer than what they replace.
 * @return 0, or -1
 * Errors: -1 for null.
 * Thread: any.
 * Ownership: the buffers are the caller's.
 */
NVRHAL_API int SimplifiedToTraditionalUTF8(const char *in, char *out);

#ifdef __cplusplus
}
#endif

#endif
