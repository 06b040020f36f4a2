/* ST_Sys_Init: the media system and its clock. */
#include <algorithm>
#include <iterator>
#include <string>

#include "start/lifecycle.h"

#include "core_start.h"

using recording::platform;
using recording::trace;

namespace
{

TEST(SystemStart, StartsTheSystemThenItsClock)
{
    platform.script("MI_SYS_GetCurPts").fills([](recording::Args &args) {
        args.record<uint64_t>(0) = 0x123456789ABCDEFull;
    });
    EXPECT_EQ(nvrhal::ST_Sys_Init(nullptr), 0u);
    EXPECT_EQ(platform.calls(), trace(R"(
        MI_SYS_Init
        MI_SYS_GetVersion
        MI_SYS_GetCurPts
        MI_SYS_InitPtsBase 17375864351241762960
        MI_SYS_SyncPts 16222942846366480528
    )"));
    EXPECT_PRINTED_WITHOUT_PREFIX("(#) u8Version:recording platform");
    EXPECT_PRINTED_WITHOUT_PREFIX("(#) u64Pts:0x123456789abcdef");
    EXPECT_EQ(recording::times_printed("(ST_Sys_Init #)exec function pass"), 5u);
}

TEST(SystemStart, HandsAZeroedVersionTextOver)
{
    bool zeroed = false;
    platform.script("MI_SYS_GetVersion").sees([&](recording::Args &args) {
        const auto &text = args.record<MI_SYS_Version>(0).text;
        zeroed = std::all_of(std::begin(text), std::end(text), [](char byte) { return byte == 0; });
    });
    EXPECT_EQ(nvrhal::ST_Sys_Init(nullptr), 0u);
    EXPECT_TRUE(zeroed);
    EXPECT_PRINTED_WITHOUT_PREFIX("(#) u8Version:recording platform");
}

constexpr const char *kSteps[] = {"MI_SYS_Init", "MI_SYS_GetVersion", "MI_SYS_GetCurPts",
                                  "MI_SYS_InitPtsBase", "MI_SYS_SyncPts"};

TEST(SystemStart, AsksAFailingCallAgainForTheCodeAndStops)
{
    for (size_t step = 0; step < std::size(kSteps); ++step) {
        SCOPED_TRACE(kSteps[step]);
        platform.reset();
        recording::forget_printed();
        platform.script(kSteps[step]).returns(-40 - static_cast<int>(step));
        EXPECT_EQ(nvrhal::ST_Sys_Init(nullptr), 1u);
        EXPECT_EQ(platform.count(kSteps[step]), 2u);
        for (size_t later = step + 1; later < std::size(kSteps); ++later)
            EXPECT_EQ(platform.count(kSteps[later]), 0u);
        EXPECT_PRINTED_WITHOUT_PREFIX("[ST_Sys_Init # -4" + std::to_string(step) + "]exec function failed");
        EXPECT_EQ(recording::times_printed("(ST_Sys_Init #)exec function pass"), step);
    }
}

TEST(SystemStart, PrintsTheSecondResultEvenWhenItIsSuccess)
{
    platform.script("MI_SYS_SyncPts").once().returns(-9);
    EXPECT_EQ(nvrhal::ST_Sys_Init(nullptr), 1u);
    EXPECT_EQ(platform.count("MI_SYS_SyncPts"), 2u);
    EXPECT_PRINTED_WITHOUT_PREFIX("[ST_Sys_Init # 0]exec function failed");
}

} // namespace
