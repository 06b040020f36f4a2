/* The wrapped calls: the real ones, unless the test says otherwise. */
#include "snap_refusal.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <pthread.h>

bool snap_refusal::memory, snap_refusal::thread;
int snap_refusal::asked_policy, snap_refusal::asked_priority;
bool snap_refusal::asked_explicitly;
uint32_t snap_refusal::given[2];
unsigned snap_refusal::joined;
const void *snap_refusal::last_freed;

extern "C" {

void *__real_malloc(size_t size);
void __real_free(void *memory);
int __real_pthread_create(pthread_t *, const pthread_attr_t *, void *(*)(void *), void *);
int __real_pthread_join(pthread_t, void **);

void *__wrap_malloc(size_t size)
{
    return snap_refusal::memory ? nullptr : __real_malloc(size);
}

void __wrap_free(void *memory)
{
    snap_refusal::last_freed = memory;
    __real_free(memory);
}

int __wrap_pthread_create(pthread_t *thread, const pthread_attr_t *attr, void *(*body)(void *),
                          void *argument)
{
    if (snap_refusal::thread) return EPERM;
    if (attr != nullptr) {
        int inherit = PTHREAD_INHERIT_SCHED;
        sched_param priority = {};
        pthread_attr_getinheritsched(attr, &inherit);
        pthread_attr_getschedpolicy(attr, &snap_refusal::asked_policy);
        pthread_attr_getschedparam(attr, &priority);
        snap_refusal::asked_explicitly = inherit == PTHREAD_EXPLICIT_SCHED;
        snap_refusal::asked_priority = priority.sched_priority;
        std::memcpy(snap_refusal::given, argument, sizeof snap_refusal::given);
    }
    return __real_pthread_create(thread, nullptr, body, argument);
}

int __wrap_pthread_join(pthread_t thread, void **result)
{
    ++snap_refusal::joined;
    return __real_pthread_join(thread, result);
}

} // extern "C"
