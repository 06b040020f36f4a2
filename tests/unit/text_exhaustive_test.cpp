/* The text conversions against the C library and against a plain implementation, over all characters. */
#include "nvrhal.h"
#include "recording_expect.h"
#include "text_buffers.h"

#include <gtest/gtest.h>

#include <iconv.h>

#include <algorithm>
#include <random>

using namespace text_test;

namespace
{

/** The C library's conversion of a whole text; empty when it refuses. */
Bytes by_iconv(const char *to, const char *from, Bytes text)
{
    iconv_t converter = iconv_open(to, from);
    if (converter == reinterpret_cast<iconv_t>(-1)) {
        ADD_FAILURE() << "iconv knows no way from " << from << " to " << to;
        return {};
    }
    Bytes out(4 * text.size() + 4);
    char *in_at = reinterpret_cast<char *>(text.data()), *out_at = reinterpret_cast<char *>(out.data());
    size_t in_left = text.size(), out_left = out.size();
    const bool done = iconv(converter, &in_at, &in_left, &out_at, &out_left) != static_cast<size_t>(-1);
    iconv_close(converter);
    out.resize(done ? out.size() - out_left : 0);
    return out;
}

Bytes pair(unsigned value)
{
    return {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
}

void append(Bytes &text, const Bytes &more)
{
    text.insert(text.end(), more.begin(), more.end());
}

Bytes utf8_of(unsigned code_point)
{
    if (code_point < 0x10000) return unicode_to_utf8(pair(code_point), 3).written;
    return {static_cast<uint8_t>(0xF0 | code_point >> 18),
            static_cast<uint8_t>(0x80 | (code_point >> 12 & 0x3F)),
            static_cast<uint8_t>(0x80 | (code_point >> 6 & 0x3F)),
            static_cast<uint8_t>(0x80 | (code_point & 0x3F))};
}

/** Bytes of which about half make sense: leads, continuations, hanzi bytes, ASCII, anything but 0. */
class RandomText
{
public:
    Bytes next(size_t at_most)
    {
        Bytes text(below(at_most + 1));
        for (uint8_t &byte : text)
            byte = random_byte();
        return text;
    }
    /** Whole characters of the tables among the random bytes, the last one cut off at times. */
    Bytes next_utf8(size_t characters)
    {
        Bytes text;
        for (size_t i = 0; i < characters; ++i) {
            const char *entry = (below(2) ? JTFontlib : FTFontlib)[below(3754)];
            if (entry && below(4) != 0)
                append(text, bytes_of(entry));
            else
                append(text, next(3));
        }
        if (!text.empty() && below(3) == 0) text.resize(text.size() - 1);
        return text;
    }
    size_t below(size_t end) { return std::uniform_int_distribution<size_t>(0, end - 1)(engine_); }

private:
    uint8_t random_byte()
    {
        switch (below(4)) {
        case 0: return static_cast<uint8_t>(1 + below(127));
        case 1: return static_cast<uint8_t>(0xA1 + below(95));
        case 2: return static_cast<uint8_t>(0x80 + below(64));
        default: return static_cast<uint8_t>(1 + below(255));
        }
    }

    std::mt19937 engine_{20121121};
};

/** Puts the tables that are searched back as they were. */
class TablesKept
{
public:
    TablesKept()
        : rows_(std::begin(Unicode_GB2312), std::end(Unicode_GB2312)),
          entries_(std::begin(JTFontlib), std::end(JTFontlib))
    {
    }
    ~TablesKept()
    {
        std::copy(rows_.begin(), rows_.end(), Unicode_GB2312);
        std::copy(entries_.begin(), entries_.end(), JTFontlib);
        TableLen = 7445;
    }
    TablesKept(const TablesKept &) = delete;
    TablesKept &operator=(const TablesKept &) = delete;

private:
    std::vector<UnicodeGb2312> rows_;
    std::vector<const char *> entries_;
};

} // namespace

TEST(TextAgainstIconv, AllCharactersOfGb2312AreTheSameBothWays)
{
    for (const UnicodeGb2312 &row : Unicode_GB2312) {
        const Bytes code = pair(row.gb2312), unit = pair(row.unicode);
        ASSERT_EQ(by_iconv("UTF-16BE", "GB2312", code), unit);
        ASSERT_EQ(by_iconv("GB2312", "UTF-16BE", unit), code);

        Bytes unit_and_end = unit, code_and_end = code;
        append(unit_and_end, {0, 0});
        append(code_and_end, {0});
        ASSERT_EQ(gb2312_to_unicode(code, 2, 2), (Conversion{0, unit_and_end, ""}));
        ASSERT_EQ(unicode_to_gb2312(unit, 2), (Conversion{0, code_and_end, ""}));
    }
}

TEST(TextAgainstIconv, HasNoOtherPairOfHighBytes)
{
    int known = 0;
    for (unsigned code = 0xA1A1; code <= 0xFEFE; ++code) {
        if ((code & 0xFF) < 0xA1 || (code & 0xFF) > 0xFE) continue;
        const Bytes unit = by_iconv("UTF-16BE", "GB2312", pair(code));
        const Conversion ours = gb2312_to_unicode(pair(code), 2, 2);
        ASSERT_EQ(ours.result == 0, !unit.empty()) << code;
        known += ours.result == 0;
    }
    EXPECT_EQ(known, 7445);
}

TEST(TextAgainstIconv, AllUnitsButSurrogatesAreTheSameInUtf8)
{
    for (unsigned unit = 1; unit < 0x10000; ++unit) {
        if (unit >= 0xD800 && unit < 0xE000) continue;
        const Bytes utf8 = by_iconv("UTF-8", "UTF-16BE", pair(unit));
        ASSERT_EQ(unicode_to_utf8(pair(unit), 3), (Conversion{0, utf8, ""}));
        ASSERT_EQ(utf8_to_unicode(utf8, 2), (Conversion{0, pair(unit), ""}));
    }
}

TEST(TextAgainstReference, EveryUnitGivesTheSameGb2312AndUtf8)
{
    InitTransformationTable();
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        ASSERT_EQ(unicode_to_gb2312(pair(unit), 2), reference::unicode_to_gb2312(pair(unit), 2)) << unit;
        if (unit == 0) continue;
        ASSERT_EQ(unicode_to_utf8(pair(unit), 3), reference::unicode_to_utf8(pair(unit), 3)) << unit;
        ASSERT_EQ(GetUnicodeToUTF8Length(exact(pair(unit), 2).get()),
                  reference::unicode_to_utf8_length(pair(unit)));
        ASSERT_EQ(GetUnicodeToGB2312Length(exact(pair(unit), 2).get()),
                  reference::unicode_to_gb2312_length(pair(unit)));
    }
}

TEST(TextAgainstReference, EveryTwoByteSequenceGivesTheSameUnicode)
{
    InitTransformationTable();
    for (unsigned bytes = 0; bytes < 0x10000; ++bytes) {
        const Bytes text = pair(bytes);
        ASSERT_EQ(gb2312_to_unicode(text, 2, 4), reference::gb2312_to_unicode(text, 2, 4)) << bytes;
        if (text[0] == 0 || text[1] == 0) continue;
        ASSERT_EQ(GetGB2312ToUnicodeLength(exact(text, 1).get()), reference::gb2312_to_unicode_length(text));
        ASSERT_EQ(failure_printed(),
                  reference::gb2312_to_unicode_length(text) < 0 ? reference::kBadString : "");
        ASSERT_EQ(utf8_to_unicode(text, 4), reference::utf8_to_unicode(text, 4)) << bytes;
        ASSERT_EQ(GetUTF8ToUnicodeLength(reinterpret_cast<const char *>(exact(text, 1).get())),
                  reference::utf8_to_unicode_length(text));
        ASSERT_EQ(to_simplified(text), text);
        ASSERT_EQ(to_traditional(text), text);
    }
}

TEST(TextAgainstReference, EveryLeadByteAnnouncesTheSame)
{
    for (unsigned lead = 0; lead < 256; ++lead) {
        uint8_t mask = 0, expected_mask = 0;
        ASSERT_EQ(GetUtf8ByteNumber(static_cast<uint8_t>(lead), &mask),
                  reference::utf8_byte_number(static_cast<uint8_t>(lead), &expected_mask));
        ASSERT_EQ(mask, expected_mask);
    }
}

TEST(TextAgainstReference, EveryCodePointBecomesTheSameCharacterInBothScripts)
{
    Bytes text;
    for (unsigned code_point = 1; code_point < 0x10000; ++code_point)
        append(text, utf8_of(code_point));
    EXPECT_EQ(to_simplified(text), reference::swap_characters(text, FTFontlib, JTFontlib));
    EXPECT_EQ(to_traditional(text), reference::swap_characters(text, JTFontlib, FTFontlib));

    Bytes higher;
    for (unsigned code_point = 0x10000; code_point <= 0x10FFFF; ++code_point)
        append(higher, utf8_of(code_point));
    EXPECT_EQ(to_simplified(higher), higher);
    EXPECT_EQ(to_traditional(higher), higher);
}

TEST(TextAgainstReference, EveryCodePointAboveTheUnitsKeepsItsLow16Bits)
{
    for (unsigned first = 0x10000; first <= 0x10FFFF; first += 0x1000) {
        Bytes text, expected;
        for (unsigned code_point = first; code_point < first + 0x1000; ++code_point) {
            append(text, utf8_of(code_point));
            append(expected, pair(code_point & 0xFFFF));
        }
        ASSERT_EQ(utf8_to_unicode(text, 0x2000), (Conversion{0, expected, ""}));
    }
}

TEST(TextAgainstReference, RandomAndTruncatedBytesGiveTheSame)
{
    InitTransformationTable();
    RandomText random;
    for (int round = 0; round < 20000; ++round) {
        const Bytes text = random.next(12);
        const int room = static_cast<int>(random.below(30)) - 1;

        const int length = static_cast<int>(random.below(text.size() + 1));
        const auto out_size = static_cast<uint32_t>(room < 0 ? 0 : room);
        ASSERT_EQ(gb2312_to_unicode(text, length, out_size),
                  reference::gb2312_to_unicode(text, length, out_size));
        ASSERT_EQ(GetGB2312ToUnicodeLength(exact(text, 1).get()), reference::gb2312_to_unicode_length(text));
        ASSERT_EQ(unicode_to_gb2312(text, room), reference::unicode_to_gb2312(text, room));

        Bytes whole_units = text;
        whole_units.resize(text.size() / 2 * 2);
        ASSERT_EQ(unicode_to_utf8(whole_units, room), reference::unicode_to_utf8(whole_units, room));
        ASSERT_EQ(GetUnicodeLength(exact(whole_units, 2).get()), static_cast<int>(whole_units.size()));

        ASSERT_EQ(utf8_to_unicode(text, room), reference::utf8_to_unicode(text, room));
        ASSERT_EQ(GetUTF8ToUnicodeLength(reinterpret_cast<const char *>(exact(text, 1).get())),
                  reference::utf8_to_unicode_length(text));
    }
}

TEST(TextAgainstReference, RandomAndTruncatedCharactersAreReplacedTheSame)
{
    RandomText random;
    for (int round = 0; round < 1000; ++round) {
        const Bytes text = random.next_utf8(8);
        ASSERT_EQ(to_simplified(text), reference::swap_characters(text, FTFontlib, JTFontlib));
        ASSERT_EQ(to_traditional(text), reference::swap_characters(text, JTFontlib, FTFontlib));
    }
}

TEST(TextAgainstReference, TablesThatTheApplicationChangesAreSearchedTheSame)
{
    InitTransformationTable();
    const TablesKept kept;
    RandomText random;
    for (int change = 0; change < 300; ++change) {
        Unicode_GB2312[random.below(7445)] = Unicode_GB2312[random.below(7445)];
        TableLen = static_cast<long>(7445 - random.below(200));
        for (int look = 0; look < 10; ++look) {
            const UnicodeGb2312 wanted = Unicode_GB2312[random.below(7445)];
            ASSERT_EQ(unicode_to_gb2312(pair(wanted.unicode), 2),
                      reference::unicode_to_gb2312(pair(wanted.unicode), 2));
            ASSERT_EQ(gb2312_to_unicode(pair(wanted.gb2312), 2, 2),
                      reference::gb2312_to_unicode(pair(wanted.gb2312), 2, 2));
        }

        static const char *const kTexts[] = {"愛", "ж", "é", "\xE7\x88\x88\x88", "\xE7\x88", "", nullptr};
        const size_t text = random.below(std::size(kTexts) + 2);
        const char *const entry = text < std::size(kTexts) ? kTexts[text] : JTFontlib[random.below(3754)];
        JTFontlib[random.below(3754)] = entry;
        if (change == 200) JTFontlib[3000] = "END";
        const Bytes sentence = random.next_utf8(6);
        ASSERT_EQ(to_traditional(sentence, 2 * sentence.size()),
                  reference::swap_characters(sentence, JTFontlib, FTFontlib));
    }
}
