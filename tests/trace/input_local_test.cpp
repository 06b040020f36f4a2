/* The local IR reader: its table, the slot it publishes in, and its thread on the stepped clock. */
#include <gtest/gtest.h>

#include "board_io.h"
#include "board_thread_refusal.h"
#include "core/shared_word.h"
#include "input_ir_table.h"
#include "input_remote_reader.h"

using input_test::frame_bytes;
using input_test::IrRow;
using input_test::kIrRows;
using input_test::kPlay;
using recording::platform;

namespace
{

constexpr uint32_t kRemoteOnly = 0x6C93FF00; // the remote-key reader's alone

bool operator==(const LocalKey &a, const LocalKey &b)
{
    return a.valid == b.valid && a.code == b.code;
}

void open_receiver()
{
    g_S32Irfd = board_open(IR_NODE, 0);
}

void queue_frame(uint32_t code, uint32_t state = 0)
{
    platform.node(IR_NODE).reads(frame_bytes(code, state));
}

LocalKey published()
{
    return {nvrhal::load_word(key.valid), nvrhal::load_word(key.code)};
}

/* Let the reader's thread, asleep for a millisecond, make one round. */
void let_poll()
{
    ASSERT_TRUE(platform.wait_for_sleepers(1));
    platform.step_us(1000);
    ASSERT_TRUE(platform.wait_for_sleepers(1));
}

} // namespace

class LocalTable : public testing::TestWithParam<IrRow>
{
};

TEST_P(LocalTable, GivesTheKeyOfAKnownCodeAndZForOthers)
{
    const IrRow &row = GetParam();
    open_receiver();
    queue_frame(row.code);
    LocalKey status = {7, 7};
    EXPECT_EQ(local_irkey_status_get(&status), 0);
    EXPECT_TRUE(status == (row.local == 0 ? LocalKey{0, 122} : LocalKey{1, row.local}));
}

INSTANTIATE_TEST_SUITE_P(EveryCode, LocalTable, testing::ValuesIn(kIrRows));

TEST(LocalReader, ReadsDescriptorZeroUntilTheApplicationSetsOne)
{
    LocalKey status = {7, 7};
    EXPECT_EQ(local_irkey_status_get(&status), 0);
    EXPECT_EQ(platform.calls(), "board_read 0 12");
    EXPECT_TRUE(status == (LocalKey{7, 7}));
}

TEST(LocalReader, LeavesTheRecordWhenAFrameIsShortOrNotPressed)
{
    open_receiver();
    LocalKey status = {1, 105};
    auto node = platform.node(IR_NODE);
    node.read_fails();
    std::vector<uint8_t> shorter = frame_bytes(0x659AFF00);
    shorter.pop_back();
    node.reads(shorter);
    queue_frame(0x659AFF00, 1);
    queue_frame(0x659AFF00, 0xFFFFFFFF);
    for (int i = 0; i < 5; ++i) { // the fifth read gives nothing
        EXPECT_EQ(local_irkey_status_get(&status), 0);
        EXPECT_TRUE(status == (LocalKey{1, 105})) << i;
    }
}

TEST(LocalReader, RefusesANullRecord)
{
    EXPECT_EQ(local_irkey_status_get(nullptr), -1);
    EXPECT_EQ(platform.calls(), "");
}

TEST(LocalReader, StartsWithOneAndFailsWithMinusOne)
{
    thread_refusal::create = true;
    EXPECT_EQ(localKey_init(), -1);
    thread_refusal::create = false;
    EXPECT_EQ(localKey_init(), 1);
    EXPECT_TRUE(platform.wait_for_sleepers(1));
}

TEST(LocalReader, PollsEveryMillisecondAndPublishesTheLastKnownKey)
{
    open_receiver();
    key = {9, 9};
    ASSERT_EQ(localKey_init(), 1);
    let_poll();
    EXPECT_TRUE(published() == (LocalKey{0, 0})); // nothing yet, and that is published

    queue_frame(kPlay);
    let_poll();
    EXPECT_TRUE(published() == (LocalKey{1, 105}));
    EXPECT_EQ(platform.count("board_sleep_us 1000"), 3u);
    EXPECT_EQ(platform.count("board_read /dev/Hi_IR 12"), 2u);

    nvrhal::store_word(key.valid, 0);
    nvrhal::store_word(key.code, 0);
    let_poll(); // a round without a frame publishes the same key again
    EXPECT_TRUE(published() == (LocalKey{1, 105}));
}

TEST(LocalReader, NeverPublishesAnUnknownCode)
{
    open_receiver();
    ASSERT_EQ(localKey_init(), 1);
    queue_frame(kPlay);
    let_poll();
    queue_frame(kRemoteOnly);
    let_poll();
    EXPECT_TRUE(published() == (LocalKey{1, 105}));
    nvrhal::store_word(key.code, 7);
    let_poll(); // the unknown code stands in the reader's record now: nothing is published
    EXPECT_EQ(published().code, 7u);
    queue_frame(0x659AFF00);
    let_poll();
    EXPECT_TRUE(published() == (LocalKey{1, 109}));
}
