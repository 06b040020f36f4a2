/* no_hooks.c - for a board of which nothing is seen but what the seams tell. A porter's own begins here. */
#include "hooks.h"

const ConformanceHooks conformance_hooks = {
    .name = "board without hooks",
};
