/*
 * main.c - one observation: NAME of a mutant as the argument, "kept" or "broken" as the answer, which is
 * the exit status as well. Without an argument: all names.
 */
#include <string.h>

#include "effect.h"
#include "vboard.h"

static const Effect *const kAreas[] = {system_effects, decoder_effects, display_effects,
                                       output_effects, snap_effects,    node_effects};

int main(int argc, char **argv)
{
    vboard_set_loud(0);
    for (size_t area = 0; area < sizeof kAreas / sizeof kAreas[0]; ++area)
        for (const Effect *effect = kAreas[area]; effect->name != NULL; ++effect) {
            if (argc < 2) puts(effect->name);
            if (argc < 2 || strcmp(effect->name, argv[1]) != 0) continue;
            const int holds = effect->holds();
            puts(holds ? "kept" : "broken");
            fflush(stdout);
            _Exit(holds ? kKept : kBroken); /* the board's threads are still at work */
        }
    if (argc < 2) return kKept;
    fprintf(stderr, "no observation \"%s\"\n", argv[1]);
    return kNotTried;
}
