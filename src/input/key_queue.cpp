/*
 * The key queue: a ring of key events between the remote-key reader and ext_keyboard_value.
 *
 * Slots and indexes are written under g_key_lock; whether the two indexes are equal is looked up
 * without it, so the indexes are whole atomic words. The two ends wrap at different slots on
 * purpose: the writer after slot 127, the reader after slot 255. A reader that has passed slot 127
 * is handed the unwritten slots behind it until it comes round; applications live with it.
 */
#include "input/key_queue.h"

#include "core/abi.h"
#include "core/shared_word.h"
#include "nvrhal.h"

ABI_SIZE(KeyEvent, 20);
ABI_AT(KeyEvent, code, 8);
ABI_SIZE(KeyQueue, 256 * 20 + 8);
ABI_AT(KeyQueue, read_index, 256 * 20);

// Written by the remote-key reader and by ext_keyboard_value, under g_key_lock.
KeyQueue key_que;
pthread_mutex_t g_key_lock = PTHREAD_MUTEX_INITIALIZER;

using namespace nvrhal;

namespace
{

constexpr uint32_t kIrRemoteSource = 2;
constexpr uint32_t kWriterSlots = NVRHAL_KEY_WRITER_SLOTS;
constexpr uint32_t kReaderSlots = NVRHAL_KEY_SLOTS;

} // namespace

void nvrhal::enqueue_remote_key(uint32_t code)
{
    pthread_mutex_lock(&g_key_lock);
    const uint32_t index = load_word(key_que.write_index);
    if (index < kReaderSlots) { // the application can set any index
        key_que.slots[index].source = kIrRemoteSource;
        key_que.slots[index].code = code;
    }
    store_word(key_que.write_index, (index + 1) % kWriterSlots);
    pthread_mutex_unlock(&g_key_lock);
}

bool nvrhal::key_queue_is_empty()
{
    return load_word(key_que.read_index) == load_word(key_que.write_index);
}

bool nvrhal::dequeue_key(uint32_t &source, uint32_t &code)
{
    pthread_mutex_lock(&g_key_lock);
    const uint32_t index = load_word(key_que.read_index);
    const bool inside = index < kReaderSlots;
    if (inside) {
        source = key_que.slots[index].source;
        code = key_que.slots[index].code;
    }
    store_word(key_que.read_index, (index + 1) % kReaderSlots);
    pthread_mutex_unlock(&g_key_lock);
    return inside;
}

void nvrhal::clear_key_queue()
{
    pthread_mutex_lock(&g_key_lock);
    store_word(key_que.read_index, 0);
    store_word(key_que.write_index, 0);
    pthread_mutex_unlock(&g_key_lock);
}
