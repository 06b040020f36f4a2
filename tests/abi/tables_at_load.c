/*
 * Whether the tables of simplified and traditional characters are whole when an application first looks:
 * in a constructor of its own, and in main. Built for a fixed address as well, where the linker gives the
 * application a copy of the tables that the library has to use too.
 */
#include <stdio.h>
#include <string.h>

#include "nvrhal.h"

enum { ENTRIES = sizeof JTFontlib / sizeof JTFontlib[0] };

static int seen_by_constructor;

static int is_whole(const char *const *table, const char *first, const char *last)
{
    for (int i = 0; i < ENTRIES; ++i)
        if (!table[i] || strlen(table[i]) != 3) return 0;
    return strcmp(table[0], first) == 0 && strcmp(table[ENTRIES - 2], last) == 0 &&
           strcmp(table[ENTRIES - 1], "END") == 0;
}

static int both_are_whole(void)
{
    return is_whole(JTFontlib, "啊", "座") && is_whole(FTFontlib, "啊", "座");
}

__attribute__((constructor)) static void look_early(void)
{
    seen_by_constructor = both_are_whole();
}

int main(void)
{
    char out[4] = {0};
    if (!seen_by_constructor) return fputs("not whole in a constructor\n", stderr), 1;
    if (!both_are_whole()) return fputs("not whole in main\n", stderr), 1;
    FTFontlib[0] = "\xE7\x88\xB1"; /* what the application sets is what the library converts to */
    if (SimplifiedToTraditionalUTF8(JTFontlib[0], out) != 0 || strcmp(out, FTFontlib[0]) != 0)
        return fputs("the library has another table\n", stderr), 1;
    return 0;
}
