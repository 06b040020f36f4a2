/*
 * text_reference.h - a second implementation of the text conversions, as plain as can be, to compare with.
 *
 * Same tables, one step after the other, no care for speed. A conversion here returns all it
 * writes; the library's output buffer must hold the same and nothing must have touched what lies
 * behind.
 */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace reference
{

using Bytes = std::vector<uint8_t>;

// The messages, in GB2312.
extern const std::string kBadString;
extern const std::string kNoRoom;
extern const std::string kNotInTable;
extern const std::string kBrokenString;

struct Conversion {
    int result = 0;
    Bytes written;
    std::string message; // of the failure, without prefix and line end

    friend bool operator==(const Conversion &, const Conversion &) = default;
};

/** The first of the first TableLen rows; -1 when there is none. */
int unicode_of_gb2312(unsigned code);
int gb2312_of_unicode(unsigned code_point);

// Texts come without their terminators.
int gb2312_to_unicode_length(const Bytes &gb2312);
Conversion gb2312_to_unicode(const Bytes &gb2312, int length, uint32_t out_size);
int unicode_to_gb2312_length(const Bytes &unicode);
Conversion unicode_to_gb2312(const Bytes &unicode, int out_size);
int unicode_to_utf8_length(const Bytes &unicode);
Conversion unicode_to_utf8(const Bytes &unicode, int out_size);
int utf8_byte_number(uint8_t lead, uint8_t *payload_mask);
int utf8_to_unicode_length(const Bytes &utf8);
Conversion utf8_to_unicode(const Bytes &utf8, int out_size);
Bytes swap_characters(const Bytes &utf8, const char *const *searched, const char *const *replacements);

} // namespace reference
