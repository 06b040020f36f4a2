/* Setting a device channel's built-in decoder. */
#include "audio_words.h"

using namespace audio_test;
using recording::platform;

namespace
{

struct PayloadRow {
    uint32_t payload, mode;
    const char *attr;
};
constexpr PayloadRow kPayloads[] = {
    {0, 0, "{codec 0 rate 48000 sound 0}"},
    {0, 1, "{codec 0 rate 48000 sound 1}"},
    {0, 7, "{codec 0 rate 48000 sound 7}"},
    {1, 0, "{codec 1 rate 48000 sound 0}"},
    {1, 2, "{codec 1 rate 48000 sound 2}"},
    {2, 0, "{codec 2 rate 48000 sound 3}"},
    {2, 3, "{codec 2 rate 48000 sound 3}"},
    {2, UINT32_MAX, "{codec 2 rate 48000 sound 3}"},
    {0, UINT32_MAX, "{codec 0 rate 48000 sound 4294967295}"},
};

TEST(AudioDecoder, TakesTheGivenModeButForPayloadTwo)
{
    for (const PayloadRow &row : kPayloads) {
        SCOPED_TRACE(row.attr);
        platform.forget();
        EXPECT_EQ(audio_create_adec_chn(4, 1, row.payload, row.mode), 0);
        EXPECT_EQ(platform.calls(),
                  std::string("MI_AO_SetAdecAttr 4 1 ") + row.attr + "\nMI_AO_EnableAdec 4 1");
        EXPECT_PRINTED(entry_of("audio_create_adec_chn"));
        EXPECT_EQ(recording::printed_lines().size(), 1u);
    }
}

TEST(AudioDecoder, RefusesPayloadsAboveTwoBeforeAnyCall)
{
    struct Row {
        uint32_t payload;
        const char *text;
    };
    for (const Row &row : {Row{3, "3"}, Row{4, "4"}, Row{0x7FFFFFFF, "2147483647"},
                           Row{0x80000000, "-2147483648"}, Row{UINT32_MAX, "-1"}}) {
        platform.forget();
        EXPECT_EQ(audio_create_adec_chn(3, 0, row.payload, 0), -1);
        EXPECT_EQ(platform.calls(), "");
        EXPECT_PRINTED_WITHOUT_PREFIX(std::string("audio_create_adec_chn: invalid aenc payload type:") +
                                      row.text);
    }
}

/* The platform's code comes through, here and only here. */
TEST(AudioDecoder, PassesThePlatformsCodeThrough)
{
    platform.script("MI_AO_SetAdecAttr").once().returns(kRefused);
    EXPECT_EQ(audio_create_adec_chn(3, 0, 0, 0), kRefused);
    EXPECT_EQ(platform.count("MI_AO_EnableAdec"), 0u);
    platform.script("MI_AO_EnableAdec").once().returns(5);
    EXPECT_EQ(audio_create_adec_chn(3, 0, 0, 0), 5);
    EXPECT_EQ(platform.count("MI_AO_EnableAdec"), 1u);
    EXPECT_EQ(recording::printed_lines().size(), 2u) << "the two entries: the code says it all";
}

} // namespace
