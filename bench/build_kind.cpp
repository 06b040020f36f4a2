/* What this build is; see build_kind.h. The build system compiles it as it compiles the library. */
#include "build_kind.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

void require_optimised_build()
{
#if !defined(__OPTIMIZE__) || defined(BENCH_SANITIZED)
    std::fprintf(stderr, "this benchmark was built without optimisation or with a sanitizer, and its figures "
                         "would say nothing; build it with: cmake --preset release\n");
    std::exit(2);
#else
    if (std::string_view(BENCH_BUILD_TYPE) != "Release")
        std::fprintf(stderr,
                     "note: a build of type \"%s\"; figures to quote come from: cmake --preset release\n",
                     BENCH_BUILD_TYPE);
#endif
}
