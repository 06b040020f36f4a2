/* Simplified and traditional characters: the pairs against their rules, the conversion byte for byte. */
#include "nvrhal.h"
#include "text_buffers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

using namespace text_test;

namespace
{

constexpr int kPairs = 3754;

std::string utf8_of(unsigned code_point)
{
    const Bytes bytes = unicode_to_utf8(units({code_point}), 3).written;
    return std::string(bytes.begin(), bytes.end());
}

std::string traditional(const std::string &text, size_t longer = 0)
{
    const Bytes out = to_traditional(bytes_of(text), longer);
    return std::string(out.begin(), out.end());
}

std::string simplified(const std::string &text)
{
    const Bytes out = to_simplified(bytes_of(text));
    return std::string(out.begin(), out.end());
}

/** Sets an entry of a table and puts the old one back. */
class EntrySet
{
public:
    EntrySet(const char **table, int index, const char *text) : entry_(table + index), before_(*entry_)
    {
        *entry_ = text;
    }
    ~EntrySet() { *entry_ = before_; }
    EntrySet(const EntrySet &) = delete;
    EntrySet &operator=(const EntrySet &) = delete;

private:
    const char **entry_;
    const char *before_;
};

int index_of(const char *const *table, const std::string &text)
{
    return static_cast<int>(std::find(table, table + kPairs, text) - table);
}

std::string ends_of(const char *const *table)
{
    if (!table[0] || !table[kPairs - 1] || !table[kPairs]) return "not there yet";
    return std::string(table[0]) + table[kPairs - 1] + table[kPairs];
}

/* The library is a part of this program, so its own constructor runs among the program's. */
const std::string ends_at_load = ends_of(JTFontlib) + " " + ends_of(FTFontlib);

} // namespace

TEST(FontTables, AreThereForTheConstructorsOfAProgram)
{
    EXPECT_EQ(ends_at_load, "啊座END 啊座END");
}

TEST(FontTables, EndWithEndBehind3754Characters)
{
    EXPECT_EQ(std::size(JTFontlib), 3755u);
    EXPECT_EQ(std::size(FTFontlib), 3755u);
    EXPECT_STREQ(JTFontlib[kPairs], "END");
    EXPECT_STREQ(FTFontlib[kPairs], "END");
    for (int index = 0; index < kPairs; ++index) {
        for (const char *entry : {JTFontlib[index], FTFontlib[index]}) {
            ASSERT_EQ(std::string(entry).size(), 3u) << index;
            ASSERT_EQ(GetUtf8ByteNumber(static_cast<uint8_t>(entry[0]), nullptr), 3) << index;
        }
    }
}

TEST(FontTables, ListTheFirstLevelHanziInCodeOrderLessOne)
{
    std::map<unsigned, unsigned> first_level;
    for (const UnicodeGb2312 &row : Unicode_GB2312)
        if (row.gb2312 >= 0xB000 && row.gb2312 < 0xD800) first_level[row.gb2312] = row.unicode;
    ASSERT_EQ(first_level.size(), 3755u);

    std::vector<std::string> expected;
    for (const auto &[code, code_point] : first_level)
        if (utf8_of(code_point) != "恰") expected.push_back(utf8_of(code_point));
    EXPECT_EQ(std::vector<std::string>(JTFontlib, JTFontlib + kPairs), expected);
    EXPECT_EQ(expected.front(), "啊");
    EXPECT_EQ(expected.back(), "座");
}

TEST(FontTables, DifferIn1298Pairs)
{
    int different = 0;
    for (int index = 0; index < kPairs; ++index)
        different += std::string(JTFontlib[index]) != FTFontlib[index];
    EXPECT_EQ(different, 1298);
}

TEST(FontTables, HoldFourTraditionalFormsTwice)
{
    std::map<std::string, std::set<std::string>> simplified_of;
    for (int index = 0; index < kPairs; ++index)
        simplified_of[FTFontlib[index]].insert(JTFontlib[index]);
    std::map<std::string, std::set<std::string>> twice;
    for (const auto &[form, characters] : simplified_of)
        if (characters.size() > 1) twice[form] = characters;

    const std::map<std::string, std::set<std::string>> expected = {
        {"沈", {"沉", "沈"}}, {"矽", {"硅", "矽"}}, {"三", {"三", "叁"}}, {"著", {"著", "着"}}};
    EXPECT_EQ(twice, expected);
    EXPECT_EQ(simplified_of.size(), static_cast<size_t>(kPairs - 4));
}

TEST(FontTables, HoldKnownPairs)
{
    const char *const pairs[][2] = {{"皑", "皚"},
                                    {"蔼", "藹"},
                                    {"碍", "礙"},
                                    {"爱", "愛"},
                                    {"袄", "襖"},
                                    {"坝", "壩"},
                                    {"罢", "罷"},
                                    {"摆", "擺"},
                                    {"败", "敗"},
                                    {"颁", "頒"},
                                    {"国", "國"},
                                    {"门", "門"},
                                    {"龙", "龍"},
                                    {"云", "雲"},
                                    // Kept by traditional text, although dictionaries know another form.
                                    {"吃", "吃"},
                                    {"岩", "岩"},
                                    {"唇", "唇"},
                                    {"群", "群"}};
    for (const auto &pair : pairs) {
        const int index = index_of(JTFontlib, pair[0]);
        ASSERT_LT(index, kPairs) << pair[0];
        EXPECT_STREQ(FTFontlib[index], pair[1]);
    }
    EXPECT_EQ(index_of(JTFontlib, "恰"), kPairs);
}

TEST(FontSwap, ConvertsWholeTexts)
{
    EXPECT_EQ(traditional("爱ABC"), "愛ABC");
    EXPECT_EQ(simplified("愛ABC"), "爱ABC");
    EXPECT_EQ(traditional("东门 2 号摄像机"), "東門 2 號攝像機");
    EXPECT_EQ(simplified("東門 2 號攝像機"), "东门 2 号摄像机");
}

TEST(FontSwap, WritesNoTerminator)
{
    char out[] = "xxxxxxxx";
    EXPECT_EQ(SimplifiedToTraditionalUTF8("爱", out), 0);
    EXPECT_STREQ(out, "愛xxxxx");
}

TEST(FontSwap, WritesNothingForNoInput)
{
    char out[] = "x";
    EXPECT_EQ(SimplifiedToTraditionalUTF8("", out), 0);
    EXPECT_EQ(TraditionalToSimplifiedUTF8("", out), 0);
    EXPECT_STREQ(out, "x");
}

TEST(FontSwap, TakesTheFirstIndexOfAFormThatStandsTwice)
{
    EXPECT_EQ(simplified("沈矽三著"), "沉硅三著");
    EXPECT_EQ(traditional("沉沈硅矽三叁著着"), "沈沈矽矽三三著著");
}

TEST(FontSwap, CopiesWhatTheTablesDoNotHold)
{
    for (const std::string text :
         {"恰", "é", "Ж", "😀", "ー", "\x80\xBF", "\xFF\x80\x80\x80\x80\x80\x80\x80", "END"}) {
        EXPECT_EQ(traditional(text), text);
        EXPECT_EQ(simplified(text), text);
    }
}

TEST(FontSwap, CopiesATruncatedCharacterAsItIs)
{
    for (const std::string text : {"\xE7", "\xE7\x88", "A\xE7\x88", "\xF0\x9F\x98", "\xFF", "\xFE\x80"}) {
        EXPECT_EQ(traditional(text), text);
        EXPECT_EQ(simplified(text), text);
    }
}

TEST(FontSwap, WorksInPlace)
{
    char text[] = "爱ABC";
    EXPECT_EQ(SimplifiedToTraditionalUTF8(text, text), 0);
    EXPECT_STREQ(text, "愛ABC");
}

TEST(FontSwap, ANullPointerIsAFailureWhereverItStands)
{
    char out[4] = "";
    for (auto *swap : {SimplifiedToTraditionalUTF8, TraditionalToSimplifiedUTF8}) {
        EXPECT_EQ(swap(nullptr, nullptr), -1);
        EXPECT_EQ(swap("A", nullptr), -1);
        EXPECT_EQ(swap(nullptr, out), -1);
    }
    EXPECT_STREQ(out, "");
}

TEST(FontSwap, SearchesTheEntriesThatTheApplicationSets)
{
    const EntrySet mine(JTFontlib, 2000, "ж");
    EXPECT_EQ(traditional("ж", 1), FTFontlib[2000]);
    const std::string before = utf8_of(0x554A); // 啊, at index 0
    const EntrySet earlier(JTFontlib, 0, JTFontlib[5]);
    EXPECT_EQ(traditional(before), before);
    EXPECT_EQ(traditional(JTFontlib[5]), FTFontlib[0]);
}

TEST(FontSwap, WritesTheEntriesThatTheApplicationSets)
{
    const int index = index_of(JTFontlib, "爱");
    {
        const EntrySet shorter(FTFontlib, index, "é");
        EXPECT_EQ(traditional("爱A"), "éA");
    }
    {
        // As long as its lead byte says, and that is nothing for ASCII.
        const EntrySet ascii(FTFontlib, index, "xyz");
        EXPECT_EQ(traditional("爱A"), "A");
    }
    {
        const EntrySet cut_off(FTFontlib, index, "\xE7\x88");
        EXPECT_EQ(traditional("爱A"), "\xE7\x88"
                                      "A");
    }
    {
        const EntrySet longer(FTFontlib, index, "愛love");
        EXPECT_EQ(traditional("爱A"), "愛A");
    }
    {
        const EntrySet none(FTFontlib, index, nullptr);
        EXPECT_EQ(traditional("爱A"), "爱A");
    }
}

TEST(FontSwap, ComparesAsManyBytesAsTheCharacterHas)
{
    const EntrySet longer(JTFontlib, 100, "жук");
    EXPECT_EQ(traditional("ж", 1), FTFontlib[100]);
    const EntrySet shorter(JTFontlib, 101, "\xE7");
    EXPECT_EQ(traditional("爱"), "愛");
    const EntrySet empty(JTFontlib, 102, "");
    EXPECT_EQ(traditional("爱"), "愛");
}

TEST(FontSwap, EndsAtTheFirstEnd)
{
    const int index = index_of(JTFontlib, "爱");
    const EntrySet end(JTFontlib, index - 1, "END");
    EXPECT_EQ(traditional("爱"), "爱");
    EXPECT_EQ(traditional("蔼"), "藹");
}

TEST(FontSwap, StaysInsideTablesWithoutAnEnd)
{
    const EntrySet no_end(JTFontlib, kPairs, "ж");
    EXPECT_EQ(traditional("жA"),
              "A"); // FTFontlib has "END" there, of which an ASCII lead byte writes nothing
    EXPECT_EQ(traditional("恰"), "恰");
}

TEST(FontSwap, PassesOverEntriesSetToNull)
{
    const EntrySet none(JTFontlib, 0, nullptr);
    EXPECT_EQ(traditional("啊爱"), "啊愛");
}
