/* What the recorder writes at its end: columns that can be told apart, and JSON that can be read. */
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console/utf8.h"
#include "record/summary.h"
#include "wall/report.h"

namespace
{

using namespace nvrec;

TEST(NvrecClosingTable, ANumberOfTenDigitsStandsApart)
{
    RecordingReport small, large;
    small.bytes = 7;
    large.stream = "main";
    large.written = 12;
    large.skipped = 3;
    large.bytes = 1'234'567'890;
    const std::vector<std::string> lines = table_of({small, large});
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_NE(lines[2].find(" 3 1234567890 "), std::string::npos) << lines[2];
    EXPECT_EQ(lines[0].find("bytes") + 5, lines[2].find("1234567890") + 10) << "under its name";
    EXPECT_EQ(lines[1].size(), lines[2].size());
}

TEST(NvrecJson, ATextThatIsNotUtf8IsMended)
{
    EXPECT_EQ(json_string("a\"\\\n\x7f"), "\"a\\\"\\\\\\u000a\x7f\"");
    EXPECT_EQ(json_string("d\xc3\xa9j\xe9 \xe9\x97"), "\"d\xc3\xa9j\xef\xbf\xbd \xef\xbf\xbd\xef\xbf\xbd\"");
}

TEST(NvrecUtf8, IsToldFromOtherBytes)
{
    for (const char *good : {"", "yard", "\xe5\x89\x8d\xe9\x97\xa8", "\xf0\x9f\x98\x80"})
        EXPECT_TRUE(is_utf8(good)) << good;
    for (const char *bad : {"\x80", "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xe5\x89", "\xff"})
        EXPECT_FALSE(is_utf8(bad)) << bad;
    EXPECT_EQ(utf8_of(u"a\u00e9\u524d\U0001F600"), "a\xc3\xa9\xe5\x89\x8d\xf0\x9f\x98\x80");
}

} // namespace
