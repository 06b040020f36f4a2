/* node_requests.h - device nodes opened and asked, with what is expected of the answer. */
#ifndef CONFORMANCE_NODE_REQUESTS_H
#define CONFORMANCE_NODE_REQUESTS_H

#include "scene.h"

int need_opened(const char *path, int flags);
void expect_request(int descriptor, unsigned long request, void *record);
void need_request(int descriptor, unsigned long request, void *record);

/* With EINVAL. */
void expect_refused(int descriptor, unsigned long request, void *record);

/* A request that takes a number where others take a record. */
void *by_value(uintptr_t value);

#endif
