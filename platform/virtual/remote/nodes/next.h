/* next.h - the C library's own function of the name that this library interposes. */
#ifndef VBOARD_REMOTE_NEXT_H
#define VBOARD_REMOTE_NEXT_H

#include <dlfcn.h>

/* NEXT(read)(descriptor, buffer, size): looked up once. */
#define NEXT(function) (::vboard_remote::next_##function())

/* To be used once for each function, in namespace vboard_remote. */
#define DEFINE_NEXT(function)                                                                                \
    [[maybe_unused]] static decltype(&::function) next_##function()                                          \
    {                                                                                                        \
        static const auto found = reinterpret_cast<decltype(&::function)>(dlsym(RTLD_NEXT, #function));      \
        return found;                                                                                        \
    }

#endif
