/* The key queue between its two ends, whose rings are of different length. */
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "input/key_queue.h"
#include "input_remote_reader.h"
#include "keyboard_driver.h"

using recording::platform;
using recording::trace;

namespace
{

using Event = std::array<uint32_t, 5>;
constexpr Event kUntouched = {0xA0, 0xA1, 0xA2, 0xA3, 0xA4};

void put(uint32_t first_code, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i)
        nvrhal::enqueue_remote_key(first_code + i);
}

/* Keys taken until the queue reads as empty, at most `limit`. */
std::vector<uint32_t> take(uint32_t limit)
{
    std::vector<uint32_t> codes;
    Event event = kUntouched;
    while (codes.size() < limit && ext_keyboard_value(event.data()) == 0)
        codes.push_back(event[2]);
    return codes;
}

std::vector<uint32_t> sequence(uint32_t first, uint32_t count)
{
    std::vector<uint32_t> codes;
    for (uint32_t i = 0; i < count; ++i)
        codes.push_back(first + i);
    return codes;
}

void show_polls()
{
    platform.describe_request(KEYBOARD_KEY_POLLED, [](const void *value) {
        return std::to_string(*static_cast<const uint32_t *>(value));
    });
}

} // namespace

TEST(KeyQueue, HandsAKeyOutAndTellsThePanel)
{
    show_polls();
    put(105, 1);
    Event event = kUntouched;
    EXPECT_EQ(ext_keyboard_value(event.data()), 0);
    EXPECT_EQ(event, (Event{2, 0xA1, 105, 0, 0}));
    EXPECT_EQ(platform.calls(), trace(R"(
        board_open /dev/KeyBoard rdonly
        board_ioctl /dev/KeyBoard 0x610a 0
    )"));
    EXPECT_PRINTED("EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEmisc.c,ext_keyboard_value,#");
}

TEST(KeyQueue, TellsThePanelAtEveryPollThatItIsEmpty)
{
    show_polls();
    Event event = kUntouched;
    EXPECT_EQ(ext_keyboard_value(event.data()), -1);
    EXPECT_EQ(ext_keyboard_value(event.data()), -1);
    EXPECT_EQ(event, kUntouched);
    EXPECT_EQ(platform.calls(), trace(R"(
        board_open /dev/KeyBoard rdonly
        board_ioctl /dev/KeyBoard 0x610a 1
        board_ioctl /dev/KeyBoard 0x610a 1
    )"));
}

TEST(KeyQueue, TellsThePanelBeforeItTakesTheKey)
{
    uint32_t index_when_told = 99;
    platform.describe_request(KEYBOARD_KEY_POLLED, [&](const void *) {
        index_when_told = key_que.read_index;
        return std::string("told");
    });
    put(105, 1);
    EXPECT_EQ(take(1), sequence(105, 1));
    EXPECT_EQ(index_when_told, 0u);
    EXPECT_EQ(key_que.read_index, 1u);
}

TEST(KeyQueue, DoesNotMindAPanelThatRefusesToListen)
{
    platform.node(KEYBOARD_NODE).ioctl(KEYBOARD_KEY_POLLED).returns(-1);
    put(105, 1);
    EXPECT_EQ(take(9), sequence(105, 1));
}

TEST(KeyQueue, GivesNothingWithoutAPanel)
{
    platform.node(KEYBOARD_NODE).fails_to_open();
    put(105, 1);
    Event event = kUntouched;
    EXPECT_EQ(ext_keyboard_value(event.data()), -1);
    EXPECT_EQ(event, kUntouched);
    EXPECT_EQ(platform.calls(), "board_open /dev/KeyBoard rdonly");
    EXPECT_EQ(key_que.read_index, 0u); // the key is still there
}

TEST(KeyQueue, RefusesANullEvent)
{
    put(105, 1);
    EXPECT_EQ(ext_keyboard_value(nullptr), -1);
    EXPECT_EQ(platform.calls(), "");
    EXPECT_EQ(take(9), sequence(105, 1));
}

TEST(KeyQueue, Holds127Keys)
{
    put(1000, 127);
    EXPECT_EQ(key_que.write_index, 127u);
    EXPECT_EQ(take(400), sequence(1000, 127));
}

// The writer wraps after slot 127 and looks for no room: it has caught the reader up.
TEST(KeyQueue, ReadsAsEmptyAfter128UnreadKeys)
{
    put(1000, 128);
    EXPECT_EQ(key_que.write_index, 0u);
    EXPECT_EQ(take(400), sequence(0, 0));
}

TEST(KeyQueue, HoldsTheLastOf129UnreadKeysAlone)
{
    put(1000, 129);
    EXPECT_EQ(take(400), sequence(1128, 1));
}

TEST(KeyQueue, HoldsTheLast44Of300UnreadKeys)
{
    put(1000, 300);
    EXPECT_EQ(key_que.write_index, 300u - 2 * 128u);
    EXPECT_EQ(take(400), sequence(1256, 44));
}

// The reader goes on to slot 255, so behind the writer's last slot it finds unwritten ones.
TEST(KeyQueue, HandsTheUnwrittenSlotsOutWhenTheReaderPassesSlot127)
{
    put(1000, 120);
    EXPECT_EQ(take(400), sequence(1000, 120));
    put(2000, 10); // slots 120 to 127, then 0 and 1
    std::vector<uint32_t> expected = sequence(2000, 8);
    expected.resize(8 + 128, 0);
    expected.push_back(2008);
    expected.push_back(2009);
    EXPECT_EQ(take(400), expected);
    EXPECT_EQ(key_que.read_index, 2u);
}

TEST(KeyQueue, AnUnwrittenSlotIsAKeyFromNowhere)
{
    key_que.read_index = 200;
    Event event = kUntouched;
    EXPECT_EQ(ext_keyboard_value(event.data()), 0);
    EXPECT_EQ(event, (Event{0, 0xA1, 0, 0, 0}));
    EXPECT_EQ(key_que.read_index, 201u);
}

TEST(KeyQueue, KeepsToItsSlotsWhateverTheIndexesSay)
{
    for (const uint32_t index : {256u, 1000u, 0xFFFFFFFFu}) {
        key_que.read_index = index;
        key_que.write_index = 3;
        Event event = kUntouched;
        EXPECT_EQ(ext_keyboard_value(event.data()), -1) << index;
        EXPECT_EQ(event, kUntouched);
        EXPECT_LT(key_que.read_index, 256u);

        key_que.write_index = index;
        key_que.read_index = 5;
        put(105, 1);
        EXPECT_LT(key_que.write_index, 128u);
        EXPECT_EQ(key_que.read_index, 5u);
    }
}

TEST(KeyQueue, LosesNothingBetweenAReaderAndAWriterThatKeepUp)
{
    constexpr uint32_t kKeys = 100; // fewer than the writer's ring
    platform.ignore("board_");
    std::thread writer([] { put(1, kKeys); });
    std::vector<uint32_t> codes;
    while (codes.size() < kKeys) {
        const std::vector<uint32_t> some = take(kKeys);
        codes.insert(codes.end(), some.begin(), some.end());
    }
    writer.join();
    EXPECT_EQ(codes, sequence(1, kKeys));
}
