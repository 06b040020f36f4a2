/* mouse_idle_is_error - breaks: a read of the mouse gives nothing, and no error, when nothing has happened.
 */
#include "board_io.h"
#include "mouse_driver.h"
#include "mutant.h"

#include <errno.h>
#include <stdatomic.h>
#include <string.h>

/* A node that was opened with O_NONBLOCK. */
enum { kDescriptors = 65536 };

static atomic_bool is_mouse[kDescriptors];

int board_open(const char *path, int flags)
{
    const int descriptor = PLATFORM(board_open)(path, flags);
    if (descriptor >= 0 && descriptor < kDescriptors)
        atomic_store(&is_mouse[descriptor], strcmp(path, MOUSE_NODE) == 0);
    return descriptor;
}

int board_read(int descriptor, void *buffer, size_t size)
{
    const int result = PLATFORM(board_read)(descriptor, buffer, size);
    if (result != 0 || descriptor >= kDescriptors || !atomic_load(&is_mouse[descriptor])) return result;
    errno = EAGAIN;
    return -1;
}
