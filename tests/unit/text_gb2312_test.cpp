/* GB2312 and Unicode: the table, the conversions byte for byte, their bounds and messages. */
#include "fresh_process.h"
#include "nvrhal.h"
#include "recording_expect.h"
#include "text_buffers.h"

#include <gtest/gtest.h>

#include <climits>
#include <set>
#include <thread>

using namespace text_test;
using reference::kBadString;
using reference::kBrokenString;
using reference::kNoRoom;
using reference::kNotInTable;

namespace
{

const Bytes kA = {0xB0, 0xA1}; // 啊, U+554A

// Everything is converted once before TableLen is looked at, so that it is set.
struct RowsSearched {
    explicit RowsSearched(long rows)
    {
        InitTransformationTable();
        TableLen = rows;
    }
    ~RowsSearched() { TableLen = 7445; }
};

} // namespace

TEST(TableLen, IsZeroUntilTheTableIsSetUpAndIsPrintedOnce)
{
    const recording::Outcome outcome = recording::in_fresh_process([] {
        const long before = TableLen;
        const int first = InitTransformationTable();
        const long set = TableLen;
        TableLen = 5;
        const int second = InitTransformationTable();
        return int64_t{before == 0 && first == 0 && set == 7445 && second == 0 && TableLen == 5};
    });
    EXPECT_TRUE(outcome.finished) << outcome.death;
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.printed, std::vector<std::string>{"TableLen = 7445"});
}

TEST(TableLen, IsSetOnceByThreadsThatComeTogether)
{
    const recording::Outcome outcome = recording::in_fresh_process([] {
        std::vector<std::thread> threads;
        int set = 0;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&set] {
                InitTransformationTable();
                __atomic_fetch_add(&set, __atomic_load_n(&TableLen, __ATOMIC_RELAXED) == 7445,
                                   __ATOMIC_RELAXED);
            });
        for (std::thread &thread : threads)
            thread.join();
        return int64_t{set};
    });
    EXPECT_EQ(outcome.result, 8);
    EXPECT_EQ(outcome.printed, std::vector<std::string>{"TableLen = 7445"});
}

TEST(TableLen, IsSetByTheFirstConversion)
{
    const recording::Outcome outcome = recording::in_fresh_process([] {
        uint8_t out[4];
        return int64_t{FromGb2312ToUnicode(kA.data(), 2, out, 4)};
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.printed, (std::vector<std::string>{"len=2, pInGb2312: \xB0\xA1", "TableLen = 7445"}));

    const recording::Outcome other_way = recording::in_fresh_process([] {
        uint8_t out[4];
        const uint8_t unit[] = {0x55, 0x4A};
        return int64_t{FromUnicodeToGb2312(unit, 2, out, 4)};
    });
    EXPECT_EQ(other_way.result, 0);
    EXPECT_EQ(other_way.printed, std::vector<std::string>{"TableLen = 7445"});
}

TEST(TableLen, BoundsTheSearch)
{
    const RowsSearched searched(4);
    EXPECT_EQ(unicode_to_gb2312(units({0x00B0}), 2).result, 0);
    EXPECT_EQ(unicode_to_gb2312(units({0x00B1}), 2).message, kNotInTable);
    EXPECT_EQ(gb2312_to_unicode({0xA1, 0xE3}, 2, 2).result, 0);
    EXPECT_EQ(gb2312_to_unicode({0xA1, 0xC0}, 2, 2).message, kNotInTable);
}

TEST(TableLen, OutsideTheTableNeverLeadsOutOfIt)
{
    for (long rows : {7446L, LONG_MAX}) {
        const RowsSearched searched(rows);
        EXPECT_EQ(unicode_to_gb2312(units({0xFFE5}), 2).written, (Bytes{0xA3, 0xA4, 0}));
        EXPECT_EQ(unicode_to_gb2312(units({0xFFFF}), 2).message, kNotInTable);
    }
    for (long rows : {0L, -1L, LONG_MIN}) {
        const RowsSearched searched(rows);
        EXPECT_EQ(unicode_to_gb2312(units({0x00A4}), 2).message, kNotInTable);
    }
}

TEST(UnicodeGb2312Table, IsSortedByCodePointAndHoldsEveryCharacterOnce)
{
    std::set<unsigned> codes;
    int symbols = 0;
    for (const UnicodeGb2312 &row : Unicode_GB2312) {
        codes.insert(row.gb2312);
        symbols += row.gb2312 < 0xB000;
    }
    EXPECT_EQ(std::size(Unicode_GB2312), 7445u);
    EXPECT_EQ(codes.size(), 7445u);
    EXPECT_EQ(symbols, 682);
    for (size_t row = 1; row < std::size(Unicode_GB2312); ++row)
        ASSERT_LT(Unicode_GB2312[row - 1].unicode, Unicode_GB2312[row].unicode);
}

TEST(UnicodeGb2312Table, HasTheStandardsRows)
{
    const unsigned first[][2] = {{0x00A4, 0xA1E8}, {0x00A7, 0xA1EC}, {0x00A8, 0xA1A7}, {0x00B0, 0xA1E3}};
    for (size_t row = 0; row < std::size(first); ++row) {
        EXPECT_EQ(Unicode_GB2312[row].unicode, first[row][0]);
        EXPECT_EQ(Unicode_GB2312[row].gb2312, first[row][1]);
    }
    EXPECT_EQ(Unicode_GB2312[7444].unicode, 0xFFE5);
    EXPECT_EQ(Unicode_GB2312[7444].gb2312, 0xA3A4);
    EXPECT_EQ(gb2312_to_unicode({0xA1, 0xA4}, 2, 2).written, units({0x30FB, 0}));
    EXPECT_EQ(gb2312_to_unicode({0xA1, 0xAA}, 2, 2).written, units({0x2015, 0}));
}

TEST(UnicodeGb2312Table, IsWhatIsSearchedAndTheFirstMatchWins)
{
    const UnicodeGb2312 early = Unicode_GB2312[10], late = Unicode_GB2312[7000];
    Unicode_GB2312[10] = {late.unicode, early.gb2312};
    EXPECT_EQ(unicode_to_gb2312(units({late.unicode}), 2).written,
              (Bytes{static_cast<uint8_t>(early.gb2312 >> 8), static_cast<uint8_t>(early.gb2312), 0}));
    EXPECT_EQ(unicode_to_gb2312(units({early.unicode}), 2).message, kNotInTable);

    Unicode_GB2312[10] = {early.unicode, late.gb2312};
    EXPECT_EQ(
        gb2312_to_unicode({static_cast<uint8_t>(late.gb2312 >> 8), static_cast<uint8_t>(late.gb2312)}, 2, 2)
            .written,
        units({early.unicode, 0}));
    Unicode_GB2312[10] = early;
}

TEST(GetGB2312ToUnicodeLength, CountsTwoBytesACharacterAndTheEnd)
{
    const auto length = [](const Bytes &text) { return GetGB2312ToUnicodeLength(exact(text, 1).get()); };
    EXPECT_EQ(length({}), 2);
    EXPECT_EQ(length(bytes_of("A")), 4);
    EXPECT_EQ(length(kA), 4);
    EXPECT_EQ(length({'A', 0xB0, 0xA1, 'B'}), 8);
    EXPECT_EQ(length({160, 160}), 6);
    EXPECT_EQ(length({161, 161}), 4);
    EXPECT_EQ(failure_printed(), "");
}

TEST(GetGB2312ToUnicodeLength, RefusesABrokenPair)
{
    const auto length = [](const Bytes &text) { return GetGB2312ToUnicodeLength(exact(text, 1).get()); };
    for (const Bytes &text :
         {Bytes{0xB0}, Bytes{'A', 0xB0}, Bytes{0xB0, 160}, Bytes{161, 'A'}, Bytes{0xB0, 0xA1, 0xFF}}) {
        EXPECT_EQ(length(text), -1);
        EXPECT_PRINTED_AS_ERROR("char_swap.c", kBadString);
        recording::forget_printed();
    }
}

TEST(FromGb2312ToUnicode, ConvertsAsciiAndHanzi)
{
    EXPECT_EQ(gb2312_to_unicode(bytes_of("A"), 1, 2), (Conversion{0, {0x00, 0x41, 0x00, 0x00}, ""}));
    EXPECT_EQ(gb2312_to_unicode(kA, 2, 2), (Conversion{0, {0x55, 0x4A, 0x00, 0x00}, ""}));
    EXPECT_EQ(gb2312_to_unicode({'a', 0xB0, 0xA1, 'b'}, 4, 6),
              (Conversion{0, units({'a', 0x554A, 'b', 0}), ""}));
}

TEST(FromGb2312ToUnicode, TakesBytesBelow161AsTheyAre)
{
    EXPECT_EQ(gb2312_to_unicode({0, 127, 128, 160}, 4, 8), (Conversion{0, units({0, 127, 128, 160, 0}), ""}));
}

TEST(FromGb2312ToUnicode, PrintsItsInputUpToTheGivenLengthOnly)
{
    const auto in = exact({'a', 'b', 'c'}, 0);
    uint8_t out[16];
    FromGb2312ToUnicode(in.get(), 3, out, 6);
    EXPECT_PRINTED_WITHOUT_PREFIX("len=3, pInGb2312: abc");
    FromGb2312ToUnicode(in.get(), 1, out, 6);
    EXPECT_PRINTED_WITHOUT_PREFIX("len=1, pInGb2312: a");
    FromGb2312ToUnicode(in.get(), -7, out, 6);
    EXPECT_PRINTED_WITHOUT_PREFIX("len=-7, pInGb2312: ");
}

TEST(FromGb2312ToUnicode, WritesTheZeroUnitForNoInputWhateverTheRoom)
{
    for (int length : {0, -1, INT_MIN})
        for (uint32_t room : {0u, 1u, 2u})
            EXPECT_EQ(gb2312_to_unicode({}, length, room), (Conversion{0, {0, 0}, ""}));
}

TEST(FromGb2312ToUnicode, NeedsRoomForOneUnitToBegin)
{
    EXPECT_EQ(gb2312_to_unicode(bytes_of("A"), 1, 0), (Conversion{-1, {}, kNoRoom}));
    EXPECT_EQ(gb2312_to_unicode(bytes_of("A"), 1, 1), (Conversion{-1, {}, kNoRoom}));
}

TEST(FromGb2312ToUnicode, EndsAtTheRoomRoundedDownToEven)
{
    for (uint32_t room : {4u, 5u})
        EXPECT_EQ(gb2312_to_unicode(bytes_of("abc"), 3, room), (Conversion{-1, units({'a', 'b'}), kNoRoom}));
    EXPECT_EQ(gb2312_to_unicode(bytes_of("abc"), 3, 6).result, 0);
}

// Kept so: the zero unit is written behind a text that fills the room.
TEST(FromGb2312ToUnicode, WritesTheZeroUnitPastTheRoomThatTheTextFills)
{
    for (uint32_t room : {4u, 5u})
        EXPECT_EQ(gb2312_to_unicode(bytes_of("ab"), 2, room), (Conversion{0, units({'a', 'b', 0}), ""}));
}

TEST(FromGb2312ToUnicode, RefusesACharacterThatTheLengthCutsOff)
{
    EXPECT_EQ(gb2312_to_unicode({0xB0}, 1, 8), (Conversion{-1, {}, kBrokenString}));
    EXPECT_EQ(gb2312_to_unicode({'A', 0xB0}, 2, 8), (Conversion{-1, units({'A'}), kBrokenString}));
    // The room is looked at first.
    EXPECT_EQ(gb2312_to_unicode({'A', 0xB0}, 2, 2), (Conversion{-1, units({'A'}), kNoRoom}));
}

TEST(FromGb2312ToUnicode, RefusesWhatIsNotInTheTable)
{
    EXPECT_EQ(gb2312_to_unicode({0xAA, 0xA1}, 2, 8), (Conversion{-1, {}, kNotInTable}));
    EXPECT_EQ(gb2312_to_unicode({'A', 0xB0, 'A'}, 3, 8), (Conversion{-1, units({'A'}), kNotInTable}));
    EXPECT_EQ(gb2312_to_unicode({0xD7, 0xFA}, 2, 8).message, kNotInTable); // the gap behind 座
}

TEST(GetUnicodeLength, CountsTheBytesBeforeTheZeroUnitAtAnEvenOffset)
{
    EXPECT_EQ(GetUnicodeLength(exact({}, 2).get()), 0);
    EXPECT_EQ(GetUnicodeLength(exact(units({'A', 'B'}), 2).get()), 4);
    EXPECT_EQ(GetUnicodeLength(exact({0x41, 0x00, 0x00, 0x41}, 2).get()), 4);
}

TEST(GetUnicodeToGB2312Length, WalksTheBytesNotTheUnits)
{
    const auto length = [](const Bytes &text) { return GetUnicodeToGB2312Length(exact(text, 2).get()); };
    EXPECT_EQ(length({}), 1);
    EXPECT_EQ(length(units({'A'})), 4);      // 00 -> 1, 41 -> 3
    EXPECT_EQ(length(units({0x554A})), 3);   // 55 -> 2
    EXPECT_EQ(length(units({'A', 'B'})), 6); // 00 -> 1, 41 -> 3, 42 -> 5
    EXPECT_EQ(length(units({0x5500, 'A'})), 6);
}

TEST(FromUnicodeToGb2312, ConvertsAsciiAndHanzi)
{
    EXPECT_EQ(unicode_to_gb2312(units({'A'}), 1), (Conversion{0, {'A', 0}, ""}));
    EXPECT_EQ(unicode_to_gb2312(units({0x554A, 'A'}), 3), (Conversion{0, {0xB0, 0xA1, 'A', 0}, ""}));
}

TEST(FromUnicodeToGb2312, TakesUnitsBelow161AsTheyAreAndTheRestFromTheTable)
{
    EXPECT_EQ(unicode_to_gb2312(units({0, 160}), 2), (Conversion{0, {0, 160, 0}, ""}));
    EXPECT_EQ(unicode_to_gb2312(units({0xA1}), 2).message, kNotInTable);
    EXPECT_EQ(unicode_to_gb2312(units({0xB0}), 2), (Conversion{0, {0xA1, 0xE3, 0}, ""}));
}

TEST(FromUnicodeToGb2312, WritesTheZeroByteForNoInputWhateverTheRoom)
{
    for (int room : {1, 0, -1, INT_MIN})
        EXPECT_EQ(unicode_to_gb2312({}, room), (Conversion{0, {0}, ""}));
}

TEST(FromUnicodeToGb2312, RefusesAnOddLengthBeforeAnythingElse)
{
    EXPECT_EQ(unicode_to_gb2312({0x55}, 8), (Conversion{-1, {}, kBrokenString}));
    EXPECT_EQ(unicode_to_gb2312({0x00, 'A', 0x55}, 0), (Conversion{-1, {}, kBrokenString}));
}

TEST(FromUnicodeToGb2312, EndsWhereTheRoomEnds)
{
    EXPECT_EQ(unicode_to_gb2312(units({'a', 'b'}), 1), (Conversion{-1, {'a'}, kNoRoom}));
    EXPECT_EQ(unicode_to_gb2312(units({'a', 0x554A}), 2), (Conversion{-1, {'a'}, kNoRoom}));
    EXPECT_EQ(unicode_to_gb2312(units({'a', 0x554A}), 3).result, 0);
    for (int room : {0, -1, INT_MIN}) {
        EXPECT_EQ(unicode_to_gb2312(units({'a'}), room), (Conversion{-1, {}, kNoRoom}));
        EXPECT_EQ(unicode_to_gb2312(units({0x554A}), room), (Conversion{-1, {}, kNoRoom}));
    }
    // The room is looked at before the table.
    EXPECT_EQ(unicode_to_gb2312(units({0xFFFF}), 1).message, kNoRoom);
}

// Kept so: the zero byte is written behind a text that fills the room.
TEST(FromUnicodeToGb2312, WritesTheZeroBytePastTheRoomThatTheTextFills)
{
    EXPECT_EQ(unicode_to_gb2312(units({'a', 'b'}), 2), (Conversion{0, {'a', 'b', 0}, ""}));
}

TEST(FromUnicodeToGb2312, RefusesWhatIsNotInTheTable)
{
    EXPECT_EQ(unicode_to_gb2312(units({'a', 0xFFFF}), 9), (Conversion{-1, {'a'}, kNotInTable}));
}

TEST(Gb2312Messages, StandBehindThePrefixOfTheChiefFile)
{
    gb2312_to_unicode({0xB0}, 1, 8);
    uint8_t out[4];
    const uint8_t lone[] = {0xB0};
    FromGb2312ToUnicode(lone, 1, out, 4);
    EXPECT_PRINTED_AS_ERROR("char_swap.c", kBrokenString);
    FromGb2312ToUnicode(lone, 1, out, 1);
    EXPECT_PRINTED_AS_ERROR("char_swap.c", kNoRoom);
    const uint8_t absent[] = {0xFF, 0xFF};
    FromUnicodeToGb2312(absent, 2, out, 4);
    EXPECT_PRINTED_AS_ERROR("char_swap.c", kNotInTable);
}

TEST(Gb2312Null, IsAFailureWhereverItStands)
{
    uint8_t some[4] = {0, 'A', 0, 0};
    EXPECT_EQ(GetGB2312ToUnicodeLength(nullptr), -1);
    EXPECT_EQ(GetUnicodeLength(nullptr), -1);
    EXPECT_EQ(GetUnicodeToGB2312Length(nullptr), -1);
    EXPECT_EQ(FromGb2312ToUnicode(nullptr, 1, some, 4), -1);
    EXPECT_EQ(FromGb2312ToUnicode(nullptr, 0, some, 4), -1);
    EXPECT_EQ(FromGb2312ToUnicode(some, 1, nullptr, 4), -1);
    EXPECT_EQ(FromUnicodeToGb2312(nullptr, 2, some, 4), -1);
    EXPECT_EQ(FromUnicodeToGb2312(some, 2, nullptr, 4), -1);
}
