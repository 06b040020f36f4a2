/* The wrapped thread calls: the real ones, unless the test says otherwise. */
#include "board_thread_refusal.h"

#include <cerrno>
#include <pthread.h>

bool thread_refusal::create, thread_refusal::attr_init, thread_refusal::attr_scope,
    thread_refusal::attr_detach, thread_refusal::attr_destroy;
int thread_refusal::scope = -1, thread_refusal::detach_state = -1;
unsigned thread_refusal::joined;

extern "C" {

int __real_pthread_create(pthread_t *, const pthread_attr_t *, void *(*)(void *), void *);
int __real_pthread_join(pthread_t, void **);
int __real_pthread_attr_init(pthread_attr_t *);
int __real_pthread_attr_setscope(pthread_attr_t *, int);
int __real_pthread_attr_setdetachstate(pthread_attr_t *, int);
int __real_pthread_attr_destroy(pthread_attr_t *);

int __wrap_pthread_create(pthread_t *thread, const pthread_attr_t *attr, void *(*body)(void *),
                          void *argument)
{
    if (!thread_refusal::create) return __real_pthread_create(thread, attr, body, argument);
    *thread = 4713; // what a refused call leaves in the handle is undefined
    return EAGAIN;
}

int __wrap_pthread_join(pthread_t thread, void **result)
{
    ++thread_refusal::joined;
    return __real_pthread_join(thread, result);
}

int __wrap_pthread_attr_init(pthread_attr_t *attr)
{
    return thread_refusal::attr_init ? ENOMEM : __real_pthread_attr_init(attr);
}

int __wrap_pthread_attr_setscope(pthread_attr_t *attr, int scope)
{
    thread_refusal::scope = scope;
    return thread_refusal::attr_scope ? ENOTSUP : __real_pthread_attr_setscope(attr, scope);
}

int __wrap_pthread_attr_setdetachstate(pthread_attr_t *attr, int state)
{
    thread_refusal::detach_state = state;
    return thread_refusal::attr_detach ? EINVAL : __real_pthread_attr_setdetachstate(attr, state);
}

int __wrap_pthread_attr_destroy(pthread_attr_t *attr)
{
    const int result = __real_pthread_attr_destroy(attr);
    return thread_refusal::attr_destroy ? EINVAL : result;
}

} // extern "C"
