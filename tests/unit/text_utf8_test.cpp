/* Unicode units and UTF-8: the conversions byte for byte, their bounds and messages. */
#include "nvrhal.h"
#include "recording_expect.h"
#include "text_buffers.h"

#include <gtest/gtest.h>

#include <climits>

using namespace text_test;
using reference::kNoRoom;

namespace
{

int utf8_length_of(const Bytes &unicode)
{
    return GetUnicodeToUTF8Length(exact(unicode, 2).get());
}

int unicode_length_of(const Bytes &utf8)
{
    return GetUTF8ToUnicodeLength(reinterpret_cast<const char *>(exact(utf8, 1).get()));
}

} // namespace

TEST(GetUtf8ByteNumber, CountsTheLeadingOnesAndKeepsTheRestAsMask)
{
    const struct {
        uint8_t lead;
        int ones;
        uint8_t mask;
    } rows[] = {{0x00, 0, 0xFF}, {0x41, 0, 0xFF}, {0x7F, 0, 0xFF}, {0x80, 1, 0x7F},
                {0xBF, 1, 0x7F}, {0xC2, 2, 0x3F}, {0xE4, 3, 0x1F}, {0xF0, 4, 0x0F},
                {0xF8, 5, 0x07}, {0xFC, 6, 0x03}, {0xFE, 7, 0x01}, {0xFF, 8, 0x00}};
    for (const auto &row : rows) {
        uint8_t mask = 0x55;
        EXPECT_EQ(GetUtf8ByteNumber(row.lead, &mask), row.ones);
        EXPECT_EQ(mask, row.mask);
        EXPECT_EQ(GetUtf8ByteNumber(row.lead, nullptr), row.ones);
    }
}

TEST(GetUnicodeToUTF8Length, CountsOneTwoOrThreeBytesAUnitAndOneMore)
{
    EXPECT_EQ(utf8_length_of({}), 1);
    EXPECT_EQ(utf8_length_of(units({'A'})), 2);
    EXPECT_EQ(utf8_length_of(units({0x7F})), 2);
    EXPECT_EQ(utf8_length_of(units({0x80})), 3);
    EXPECT_EQ(utf8_length_of(units({0x7FF})), 3);
    EXPECT_EQ(utf8_length_of(units({0x800})), 4);
    EXPECT_EQ(utf8_length_of(units({0x7FFF})), 4);
    EXPECT_EQ(utf8_length_of(units({'A', 0x80, 0x800})), 7);
}

// Kept so: the unit is signed in the length and unsigned in the conversion.
TEST(GetUnicodeToUTF8Length, CountsOneByteForUnitsFrom0x8000AlthoughThreeAreWritten)
{
    for (unsigned unit : {0x8000u, 0x9000u, 0xFFFFu}) {
        EXPECT_EQ(utf8_length_of(units({unit})), 2);
        EXPECT_EQ(unicode_to_utf8(units({unit}), 3).written.size(), 3u);
    }
}

TEST(UnicodeToUTF8, WritesOneTwoOrThreeBytesAUnitAndNoTerminator)
{
    EXPECT_EQ(unicode_to_utf8(units({'A'}), 4), (Conversion{0, {'A'}, ""}));
    EXPECT_EQ(unicode_to_utf8(units({0x7F, 0x80, 0x7FF, 0x800}), 8),
              (Conversion{0, {0x7F, 0xC2, 0x80, 0xDF, 0xBF, 0xE0, 0xA0, 0x80}, ""}));
    EXPECT_EQ(unicode_to_utf8(units({0x554A, 0x9000, 0xFFFF}), 9),
              (Conversion{0, {0xE5, 0x95, 0x8A, 0xE9, 0x80, 0x80, 0xEF, 0xBF, 0xBF}, ""}));
}

TEST(UnicodeToUTF8, WritesNothingForNoInputWhateverTheRoom)
{
    for (int room : {1, 0, -1, INT_MIN})
        EXPECT_EQ(unicode_to_utf8({}, room), (Conversion{0, {}, ""}));
}

TEST(UnicodeToUTF8, EndsBeforeTheCharacterThatHasNoRoom)
{
    const struct {
        unsigned unit;
        int bytes;
    } rows[] = {{'B', 1}, {0x80, 2}, {0x800, 3}};
    for (const auto &row : rows) {
        const Bytes unicode = units({'A', row.unit});
        for (int room = 1; room < 1 + row.bytes; ++room)
            EXPECT_EQ(unicode_to_utf8(unicode, room), (Conversion{-1, {'A'}, kNoRoom}));
        EXPECT_EQ(unicode_to_utf8(unicode, 1 + row.bytes).result, 0);
        for (int room : {0, -1, INT_MIN})
            EXPECT_EQ(unicode_to_utf8(unicode, room), (Conversion{-1, {}, kNoRoom}));
    }
}

TEST(GetUTF8ToUnicodeLength, CountsTwoBytesACharacterAndOneMore)
{
    EXPECT_EQ(unicode_length_of({}), 1);
    EXPECT_EQ(unicode_length_of(bytes_of("A")), 3);
    EXPECT_EQ(unicode_length_of(bytes_of("啊A")), 5);
    EXPECT_EQ(unicode_length_of({0xF0, 0x9F, 0x98, 0x80}), 3);
    EXPECT_EQ(unicode_length_of({0x80, 0x80}), 5);
}

TEST(GetUTF8ToUnicodeLength, StopsATruncatedCharacterAtTheEndOfTheText)
{
    EXPECT_EQ(unicode_length_of({'A', 0xE5}), 5);
    EXPECT_EQ(unicode_length_of({0xFF, 0x80}), 3);
}

TEST(UTF8ToUnicode, WritesAUnitACharacterHighByteFirstAndNoTerminator)
{
    EXPECT_EQ(utf8_to_unicode(bytes_of("A"), 2), (Conversion{0, units({'A'}), ""}));
    EXPECT_EQ(utf8_to_unicode(bytes_of("é啊A"), 6), (Conversion{0, units({0xE9, 0x554A, 'A'}), ""}));
    EXPECT_EQ(utf8_to_unicode({}, 0), (Conversion{0, {}, ""}));
}

TEST(UTF8ToUnicode, KeepsTheLow16BitsOfLongerCharacters)
{
    EXPECT_EQ(utf8_to_unicode({0xF0, 0x9F, 0x98, 0x80}, 2).written, units({0xF600})); // U+1F600
    EXPECT_EQ(utf8_to_unicode({0xF8, 0x88, 0x80, 0x80, 0x81}, 2).written, units({0x0001}));
    EXPECT_EQ(utf8_to_unicode({0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF}, 2).written, units({0xFFFF}));
    EXPECT_EQ(utf8_to_unicode({0xFE, 0x80, 0x80, 0x80, 0x81, 0x82, 0x83}, 2).written, units({0x1083}));
    EXPECT_EQ(utf8_to_unicode({0xFF, 0xBF, 0x80, 0x80, 0x80, 0x81, 0x82, 0x83}, 2).written, units({0x1083}));
}

TEST(UTF8ToUnicode, DoesNotCheckContinuationBytes)
{
    EXPECT_EQ(utf8_to_unicode({0xE5, 'A', 0xFF}, 2).written, units({0x507F}));
    EXPECT_EQ(utf8_to_unicode({0x81, 0xBF}, 4).written, units({0x01, 0x3F}));
}

TEST(UTF8ToUnicode, StopsATruncatedCharacterAtTheEndOfTheText)
{
    EXPECT_EQ(utf8_to_unicode({0xE5, 0x95}, 2), (Conversion{0, units({0x5540}), ""}));
    EXPECT_EQ(utf8_to_unicode({'A', 0xE5}, 4), (Conversion{0, units({'A', 0x5000}), ""}));
    EXPECT_EQ(utf8_to_unicode({0xFF}, 2), (Conversion{0, units({0}), ""}));
}

// Kept so: the test is strict, so the room may be passed by one unit before it strikes.
TEST(UTF8ToUnicode, WritesOneUnitPastTheRoomBeforeItFails)
{
    EXPECT_EQ(utf8_to_unicode(bytes_of("a"), 0), (Conversion{0, units({'a'}), ""}));
    EXPECT_EQ(utf8_to_unicode(bytes_of("ab"), 0), (Conversion{-1, units({'a'}), kNoRoom}));
    EXPECT_EQ(utf8_to_unicode(bytes_of("ab"), 1), (Conversion{-1, units({'a'}), kNoRoom}));
    EXPECT_EQ(utf8_to_unicode(bytes_of("ab"), 2), (Conversion{0, units({'a', 'b'}), ""}));
    EXPECT_EQ(utf8_to_unicode(bytes_of("abc"), 2), (Conversion{-1, units({'a', 'b'}), kNoRoom}));
    EXPECT_EQ(utf8_to_unicode(bytes_of("a"), -1), (Conversion{-1, {}, kNoRoom}));
}

TEST(Utf8Null, IsAFailureWhereverItStands)
{
    uint8_t unicode[4] = {0, 'A', 0, 0};
    EXPECT_EQ(GetUnicodeToUTF8Length(nullptr), -1);
    EXPECT_EQ(GetUTF8ToUnicodeLength(nullptr), -1);

    EXPECT_EQ(UnicodeToUTF8(nullptr, unicode, 4), -1);
    EXPECT_EQ(UnicodeToUTF8(unicode, nullptr, 4), -1);
    EXPECT_EQ(UTF8ToUnicode(nullptr, unicode, 4), -1);
    EXPECT_EQ(UTF8ToUnicode("A", nullptr, 4), -1);
    EXPECT_EQ(UTF8ToUnicode(nullptr, nullptr, 4), -1);
    EXPECT_EQ(recording::times_printed("[char_swap.c]-#: " + kNoRoom), 5u);
}
