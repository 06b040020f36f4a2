/*
 * log.h - where the library's log goes: standard output, or a function of the application.
 */
#ifndef NVRHAL_LOG_H
#define NVRHAL_LOG_H

#include <stddef.h>

#include "nvrhal/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Give the library's log to a function, in place of standard output. Best called first, so that the
 * function sees the start-up as well.
 *
 * The function gets every text that the library prints, whole and in order, in one call each: `length`
 * bytes at `text`, which a zero byte follows. A text is mostly a line with its line end; it may also be
 * a part of a line whose rest comes later, or several lines. The bytes are those that standard output
 * would have got. Some texts go to standard error while no function is set, and to the function like
 * any other: what qrencode prints before it ends the process, and those with the system's reason: of
 * fb_init, when the driver refuses, and of LoadBMP and LoadBMPEx, when a file ends early. The function
 * does not get what the platform prints.
 *
 * The function runs on the thread that prints, one call at a time, perhaps with global_bindargLock held.
 * It must not call the library, and must not wait for a thread that does: printing threads wait for it.
 * When nvrhal_set_log has returned, the function that was set before does not run any more.
 * @param write  any function; null = standard output, as after loading
 * @param user   handed to every call of the function; any value
 * Errors: none. A text of more than 255 bytes for which no memory is left goes to standard output.
 * Thread: any, before ext_device_init as well; not from the function itself, and not with a lock held
 *         that the function takes.
 * Ownership: text is the library's, and is only valid during the call; user stays the caller's, and must
 *            be there until another function, or none, is set.
 */
NVRHAL_API void nvrhal_set_log(void (*write)(const char *text, size_t length, void *user), void *user);

#ifdef __cplusplus
}
#endif

#endif
