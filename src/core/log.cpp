/*
 * Where texts go: standard output, some to standard error, or the function that the application has set.
 *
 * A text reaches that function whole and in one call, behind a lock: one text at a time, and once
 * nvrhal_set_log has returned, the function of before runs no more. As long as none is set, printing takes no
 * lock but that of the standard stream.
 *
 * Threads: any. The lock is the last one taken: it is held while the application's function runs, and
 * that function does not call the library.
 */
#include "core/log.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <pthread.h>

#include "nvrhal/log.h"

using namespace nvrhal;

namespace
{

using Write = void (*)(const char *text, size_t length, void *user);

constexpr size_t kUsualText_bytes = 256; // nearly every text fits; longer ones are the application's own

pthread_mutex_t log_lock = PTHREAD_MUTEX_INITIALIZER; // guards the two below
Write log_write = nullptr; // by nvrhal_set_log; printing looks without the lock whether there is one at all
void *log_user = nullptr;

/** Hand a text over. False when somebody has taken the function away meanwhile. */
bool hand_over(const char *text, size_t length)
{
    const int error = errno; // of a call that failed: its text may follow (log_errno)
    // A thread that ends inside the application's function would take the lock along.
    int cancel_state = 0;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancel_state);
    pthread_mutex_lock(&log_lock);
    const Write write = log_write;
    if (write != nullptr) write(text, length, log_user);
    pthread_mutex_unlock(&log_lock);
    pthread_setcancelstate(cancel_state, nullptr);
    errno = error;
    return write != nullptr;
}

/** Format and hand over a text of any length. False when nobody took it. */
bool write_whole(const char *format, va_list arguments, int &length)
{
    char usual[kUsualText_bytes];
    va_list again;
    va_copy(again, arguments);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the caller's list
    length = std::vsnprintf(usual, sizeof usual, format, arguments);
    char *text = usual;
    if (length >= static_cast<int>(sizeof usual)) {
        const size_t size = static_cast<size_t>(length) + 1;
        text = static_cast<char *>(std::malloc(size));
        if (text != nullptr) std::vsnprintf(text, size, format, again);
    }
    va_end(again);
    if (length < 0) return true; // nothing that could be printed elsewhere either
    const bool taken = text != nullptr && hand_over(text, static_cast<size_t>(length));
    if (text != usual) std::free(text);
    return taken;
}

int print(FILE *otherwise, const char *format, va_list arguments)
{
    if (__atomic_load_n(&log_write, __ATOMIC_RELAXED) != nullptr) {
        int length = 0;
        va_list copy;
        va_copy(copy, arguments);
        const bool taken = write_whole(format, copy, length);
        va_end(copy);
        if (taken) return length;
    }
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the caller's list
    return std::vfprintf(otherwise, format, arguments);
}

} // namespace

int nvrhal::log_text(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = print(stdout, format, arguments);
    va_end(arguments);
    return length;
}

int nvrhal::log_to_standard_error(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = print(stderr, format, arguments);
    va_end(arguments);
    return length;
}

void nvrhal::log_errno(const char *text)
{
    const int error = errno;
    log_to_standard_error("%s: %s\n", text, std::strerror(error));
    errno = error;
}

void nvrhal_set_log(void (*write)(const char *text, size_t length, void *user), void *user)
{
    pthread_mutex_lock(&log_lock);
    __atomic_store_n(&log_write, write, __ATOMIC_RELAXED);
    log_user = user;
    pthread_mutex_unlock(&log_lock);
}
