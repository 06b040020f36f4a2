/*
 * The local IR reader: the last known key of an IR descriptor that the application opened.
 *
 * One thread of the library, from localKey_init until the process ends; it takes no lock. The
 * application reads `key` at any time, word by word.
 */
#include "board_io.h"
#include "core/shared_word.h"
#include "input/ir_codes.h"
#include "input/key_state.h"
#include "ir_driver.h"

using namespace nvrhal;

namespace
{

constexpr uint32_t kPollUs = 1000;
constexpr int32_t kStarted = 1; // applications test for 1, not for 0

void *run_local_reader(void *)
{
    local_ir_key_thread_body();
    return nullptr;
}

} // namespace

int32_t local_irkey_status_get(LocalKey *status)
{
    if (status == nullptr) return -1;
    IrFrame frame = {};
    const int got = board_read(load_word(g_S32Irfd), &frame, sizeof frame);
    if (got != static_cast<int>(sizeof frame) || frame.state != 0) return 0;
    const uint32_t code = local_key(frame.code);
    status->valid = code == kNoKey ? 0 : 1;
    status->code = code == kNoKey ? kUnknownKey : code;
    return 0;
}

void local_ir_key_thread_body(void)
{
    LocalKey status = {}; // a round without a frame publishes the last one again
    for (;;) {
        board_sleep_us(kPollUs);
        local_irkey_status_get(&status);
        if (status.code == kUnknownKey) continue;
        store_word(key.valid, status.valid);
        store_word(key.code, status.code);
    }
}

int32_t localKey_init(void)
{
    pthread_t reader;
    if (pthread_create(&reader, nullptr, run_local_reader, nullptr) != 0) return -1;
    return kStarted;
}
