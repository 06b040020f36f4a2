/* A benchmark as a build without optimisation would have it: it must not come to measure. */
#include <cstdio>

#include "build_kind.h"

int main()
{
    require_optimised_build();
    std::puts("measuring");
    return 0;
}
