/* ir_phantom_frame - breaks: a read of the infrared receiver gives nothing when no frame has come. */
#include "board_io.h"
#include "ir_driver.h"
#include "mutant.h"

#include <stdatomic.h>
#include <string.h>

/* A frame of zeros where there is none; its state word says "pressed". */
enum { kDescriptors = 65536 };

static atomic_bool is_receiver[kDescriptors];

int board_open(const char *path, int flags)
{
    const int descriptor = PLATFORM(board_open)(path, flags);
    if (descriptor >= 0 && descriptor < kDescriptors)
        atomic_store(&is_receiver[descriptor], strcmp(path, IR_NODE) == 0);
    return descriptor;
}

int board_read(int descriptor, void *buffer, size_t size)
{
    const int result = PLATFORM(board_read)(descriptor, buffer, size);
    if (result != 0 || size < sizeof(IrFrame) || descriptor >= kDescriptors ||
        !atomic_load(&is_receiver[descriptor]))
        return result;
    memset(buffer, 0, sizeof(IrFrame));
    return sizeof(IrFrame);
}
