/* node_requests.c - device nodes opened and asked. See node_requests.h. */
#include "node_requests.h"

#include <errno.h>

#include "record.h"

int need_opened(const char *path, int flags)
{
    const int descriptor = board_open(path, flags);
    if (descriptor < 0) blocked("could not be set up: %s", last_call_text());
    return descriptor;
}

void expect_request(int descriptor, unsigned long request, void *record)
{
    HOLDS(board_ioctl(descriptor, request, record) >= 0, "%s, expected success", last_call_text());
}

void need_request(int descriptor, unsigned long request, void *record)
{
    if (board_ioctl(descriptor, request, record) < 0) blocked("could not be set up: %s", last_call_text());
}

void expect_refused(int descriptor, unsigned long request, void *record)
{
    const int result = board_ioctl(descriptor, request, record);
    HOLDS(result == -1 && errno == EINVAL, "%s, errno %d, expected -1 and EINVAL", last_call_text(), errno);
}

void *by_value(uintptr_t value)
{
    return (void *)value;
}
