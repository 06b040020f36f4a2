/* State that the key calls, the key readers and the record indicator share. */
#include "input/key_state.h"

#include "board_io.h"
#include "core/abi.h"
#include "core/shared_word.h"
#include "ir_driver.h"
#include "keyboard_driver.h"

#include <fcntl.h>

ABI_SIZE(LocalKey, 8);
ABI_SIZE(PanelKey, 4);
static_assert(__builtin_strcmp(NVRHAL_PANEL_NODE, KEYBOARD_NODE) == 0);

// The public record and name of the receiver are those of its driver.
ABI_SIZE(RemoteFrame, sizeof(IrFrame));
ABI_AT(RemoteFrame, code, offsetof(IrFrame, code));
ABI_AT(RemoteFrame, state, offsetof(IrFrame, state));
static_assert(__builtin_strcmp(NVRHAL_REMOTE_NODE, IR_NODE) == 0);

// Written by the application, through ext_keyboard_zoom_flag or directly; read by the gate.
int32_t keyboard_zoom_flag_m = 1;

// Written by the application; the library never opens it.
int32_t g_S32Irfd;

// Written by the local IR reader; read by the application, word by word.
LocalKey key;

int32_t nvrhal::keyFd = -1;
int32_t nvrhal::remoteFd = -1;

// Nothing in the library starts the threads of these handles, so they stay 0; the operations that test
// them behave as with no thread running.
pthread_t nvrhal::localkeyThread;
pthread_t nvrhal::remotekeyThread;
pthread_mutex_t nvrhal::key_threads_lock = PTHREAD_MUTEX_INITIALIZER;

int32_t nvrhal::first_zoom_key_flag;
int32_t nvrhal::zoom_key_flag;

int32_t nvrhal::open_front_panel()
{
    const int32_t open = load_word(keyFd);
    if (open != -1) return open;
    const int32_t opened = board_open(KEYBOARD_NODE, O_RDONLY);
    store_word(keyFd, opened);
    return opened;
}
