/*
 * The remote-key reader: frames of the IR receiver, through the zoom gate, into the key queue.
 *
 * Runs on a thread of the application, for ever. A cancelled thread ends while it reads or prints,
 * and then holds no lock of the library. The receiver stays open for the next run.
 */
#include "board_io.h"
#include "core/log.h"
#include "core/shared_word.h"
#include "input/ir_codes.h"
#include "input/key_queue.h"
#include "input/key_state.h"
#include "ir_driver.h"

#include <fcntl.h>

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "misc.c";

constexpr int32_t kNothingToRepeat = -1;
constexpr int32_t kEveryKeyPasses = 1; // keyboard_zoom_flag_m
constexpr int32_t kZoomKeyArms = 0;

/** Pass a key, hold it back, or drop it, as the application's zoom mode says. */
void pass_gate(uint32_t code)
{
    const int32_t mode = load_word(keyboard_zoom_flag_m);
    if (mode != kEveryKeyPasses && mode != kZoomKeyArms) return;
    log_text("remote key %u, zoom mode %d, click %u\n", static_cast<unsigned>(code), mode,
             static_cast<unsigned>(load_word(zoom_flag_click)));

    if (mode == kEveryKeyPasses) {
        first_zoom_key_flag = 0;
        zoom_key_flag = 0;
        enqueue_remote_key(code);
        return;
    }
    if (code != kZoomKey || first_zoom_key_flag == 1) {
        enqueue_remote_key(code);
        zoom_key_flag = 1;
        if (code == kZoomKey) first_zoom_key_flag = 1;
        return;
    }
    // The first zoom key after other keys is swallowed: it arms the gate for those behind it.
    if (zoom_key_flag == 1) first_zoom_key_flag = 1;
}

/** What a frame says: its key, or kNothingToRepeat. */
int32_t key_of(const IrFrame &frame)
{
    if (frame.state != 0) return kNothingToRepeat;
    const uint32_t code = remote_key(frame.code);
    return code == kNoKey ? kNothingToRepeat : static_cast<int32_t>(code);
}

} // namespace

int32_t hi_remotekey_proc(void)
{
    if (load_word(remoteFd) == -1) {
        const int32_t opened = board_open(IR_NODE, O_RDWR);
        store_word(remoteFd, opened);
        if (opened < 0) {
            log_error(kSource, "ERROR:can not open %s device. read return %d\n", "Hi_IR", opened);
            return opened;
        }
    }

    int32_t last = kNothingToRepeat;
    IrFrame frame = {};
    for (;;) {
        // A read that gives nothing means that the button is still held.
        if (board_read(load_word(remoteFd), &frame, sizeof frame) >= 1) last = key_of(frame);
        if (last >= 1) pass_gate(static_cast<uint32_t>(last));
    }
}

void translateKey(...) {}

void hi_localkey_proc(...) {}
