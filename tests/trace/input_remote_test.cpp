/* The remote-key reader: its table, what repeats, and the zoom gate in front of the key queue. */
#include <gtest/gtest.h>

#include "input_ir_table.h"
#include "input_remote_reader.h"

using input_test::IrRow;
using input_test::kIrRows;
using input_test::kPlay;
using input_test::queued_keys;
using input_test::RemoteReader;
using recording::platform;
using recording::trace;

namespace
{

using Keys = std::vector<uint32_t>;

constexpr uint32_t kZoom = 0x619EFF00;      // key 96
constexpr uint32_t kMenu = 0x659AFF00;      // key 109
constexpr uint32_t kLocalOnly = 0xE01F7F80; // the local reader's alone

} // namespace

class RemoteTable : public testing::TestWithParam<IrRow>
{
};

TEST_P(RemoteTable, QueuesTheKeyOfAKnownCodeAndNothingForOthers)
{
    const IrRow &row = GetParam();
    RemoteReader().frame(row.code).run();
    EXPECT_EQ(queued_keys(), row.remote == 0 ? Keys{} : Keys{row.remote});
}

INSTANTIATE_TEST_SUITE_P(EveryCode, RemoteTable, testing::ValuesIn(kIrRows));

TEST(RemoteReaderLoop, KnowsNoOtherCodes)
{
    RemoteReader reader;
    for (const uint32_t code : {0u, 0xFFFFFFFFu, 0x619EFF01u, 0x9E61FF00u, 0xE41B0200u, 0x00FF619Eu})
        reader.frame(code);
    reader.run();
    EXPECT_EQ(queued_keys(), Keys{});
}

TEST(RemoteReaderLoop, OpensTheReceiverOnceAndLeavesItOpen)
{
    RemoteReader().frame(kPlay).run();
    RemoteReader().frame(kMenu).run();
    EXPECT_EQ(platform.calls(), "board_open /dev/Hi_IR rdwr");
    EXPECT_EQ(platform.node("/dev/Hi_IR").open_count(), 1u);
    EXPECT_EQ(queued_keys(), (Keys{105, 109}));
}

TEST(RemoteReaderLoop, EndsWhenTheReceiverCannotBeOpened)
{
    platform.node("/dev/Hi_IR").fails_to_open();
    EXPECT_EQ(hi_remotekey_proc(), -1);
    EXPECT_PRINTED_AS_ERROR("misc.c", "ERROR:can not open Hi_IR device. read return -1");
    EXPECT_EQ(platform.calls(), "board_open /dev/Hi_IR rdwr");
}

TEST(RemoteReaderLoop, ReadsDescriptorZero)
{
    platform.node("/dev/Hi_IR").opens_as(0);
    RemoteReader().frame(kPlay).run();
    EXPECT_EQ(queued_keys(), Keys{105});
}

TEST(RemoteReaderLoop, TriesAgainAfterAFailedOpen)
{
    platform.script("board_open").once().returns(-1);
    EXPECT_EQ(hi_remotekey_proc(), -1);
    RemoteReader().frame(kPlay).run();
    EXPECT_EQ(queued_keys(), Keys{105});
}

TEST(RemoteReaderLoop, MarksItsKeysAndLeavesTheOtherWordsOfASlot)
{
    key_que.slots[0] = {7, 8, 9, {10, 11}};
    RemoteReader().frame(kPlay).run();
    const KeyEvent &slot = key_que.slots[0];
    EXPECT_EQ(slot.source, 2u);
    EXPECT_EQ(slot.unread_1, 8u);
    EXPECT_EQ(slot.code, 105u);
    EXPECT_EQ(slot.unread[0], 10u);
    EXPECT_EQ(slot.unread[1], 11u);
}

TEST(RemoteReaderLoop, RepeatsTheLastKeyWhileReadsGiveNothing)
{
    RemoteReader().frame(kPlay).nothing().nothing(-1).nothing().run();
    EXPECT_EQ(queued_keys(), (Keys{105, 105, 105, 105}));
}

TEST(RemoteReaderLoop, HasNothingToRepeatBeforeTheFirstKey)
{
    RemoteReader().nothing().nothing(-1).frame(kPlay).run();
    EXPECT_EQ(queued_keys(), Keys{105});
}

TEST(RemoteReaderLoop, AnotherStateEndsTheRepeating)
{
    RemoteReader().frame(kPlay).frame(kPlay, 1).nothing().frame(kMenu, 0x80000000).nothing().run();
    EXPECT_EQ(queued_keys(), Keys{105});
}

TEST(RemoteReaderLoop, AnUnknownCodeEndsTheRepeating)
{
    RemoteReader().frame(kPlay).frame(kLocalOnly).nothing().run();
    EXPECT_EQ(queued_keys(), Keys{105});
}

// The reader looks only for "at least one byte": a short frame leaves the words behind it standing.
TEST(RemoteReaderLoop, AShortFrameIsReadOverTheOneBefore)
{
    std::vector<uint8_t> start = input_test::frame_bytes(kMenu);
    start.resize(8);
    RemoteReader().frame(kPlay).read({1, {0xFF}}).read({8, start}).run();
    EXPECT_EQ(queued_keys(), (Keys{105, 105, 109}));
}

TEST(ZoomGate, ModeOneAtLoadLetsEveryKeyPassAndResetsTheFlags)
{
    EXPECT_EQ(keyboard_zoom_flag_m, 1);
    nvrhal::first_zoom_key_flag = 1;
    nvrhal::zoom_key_flag = 1;
    RemoteReader().frame(kZoom).frame(kPlay).frame(kZoom).run();
    EXPECT_EQ(queued_keys(), (Keys{96, 105, 96}));
    EXPECT_EQ(nvrhal::first_zoom_key_flag, 0);
    EXPECT_EQ(nvrhal::zoom_key_flag, 0);
}

TEST(ZoomGate, ModeZeroDropsALoneZoomKey)
{
    ext_keyboard_zoom_flag(0);
    RemoteReader().frame(kZoom).frame(kZoom).run();
    EXPECT_EQ(queued_keys(), Keys{});
    EXPECT_EQ(nvrhal::first_zoom_key_flag, 0);
}

TEST(ZoomGate, ModeZeroSwallowsTheFirstZoomKeyAfterOthersAndPassesTheNext)
{
    ext_keyboard_zoom_flag(0);
    RemoteReader().frame(kPlay).frame(kZoom).frame(kZoom).frame(kMenu).frame(kZoom).run();
    EXPECT_EQ(queued_keys(), (Keys{105, 96, 109, 96}));
    EXPECT_EQ(nvrhal::first_zoom_key_flag, 1);
    EXPECT_EQ(nvrhal::zoom_key_flag, 1);
}

TEST(ZoomGate, ModeZeroIsArmedAnewAfterModeOne)
{
    ext_keyboard_zoom_flag(0);
    RemoteReader().frame(kPlay).frame(kZoom).frame(kZoom).run();
    ext_keyboard_zoom_flag(1);
    RemoteReader().frame(kPlay).run();
    ext_keyboard_zoom_flag(0);
    RemoteReader().frame(kZoom).frame(kPlay).frame(kZoom).run();
    EXPECT_EQ(queued_keys(), (Keys{105, 96, 105, 105}));
}

TEST(ZoomGate, AHeldZoomKeyGoesThroughTheGateWithEachRepeat)
{
    ext_keyboard_zoom_flag(0);
    RemoteReader().frame(kPlay).frame(kZoom).nothing().nothing().run();
    EXPECT_EQ(queued_keys(), (Keys{105, 96, 96}));
}

TEST(ZoomGate, OtherModesDropEveryKey)
{
    for (const int32_t mode : {2, -1, 255}) {
        ext_keyboard_zoom_flag(mode);
        EXPECT_EQ(keyboard_zoom_flag_m, mode);
        RemoteReader().frame(kPlay).nothing().frame(kZoom).run();
        EXPECT_EQ(queued_keys(), Keys{}) << mode;
    }
}

TEST(ZoomGate, SettingTheModeGivesTheCharactersPrinted)
{
    const int32_t characters = ext_keyboard_zoom_flag(0);
    EXPECT_EQ(characters, static_cast<int32_t>(recording::printed_text().size()));
    EXPECT_EQ(recording::printed_text().back(), '\n');
    EXPECT_GT(characters, 0);
}
