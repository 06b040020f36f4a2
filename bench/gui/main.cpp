/*
 * The GUI surface beside what a PC offers for the same work: rectangle fill beside memset and
 * pixman, BMP loading beside SDL2, QR images beside the qrencode tool. One run, fixed inputs,
 * ratios at the end of each line; it asserts nothing.
 *
 *   bench_gui [fill] [bmp] [qr]     no argument = all
 */
#include <cstring>
#include <unistd.h>

#include "build_kind.h"
#include "contest.h"

int main(int count, char **arguments)
{
    require_optimised_build();
    // The library prints what it encodes. That is discarded; the report goes to the original output.
    FILE *report = fdopen(dup(STDOUT_FILENO), "w");
    if (!report || !std::freopen("/dev/null", "w", stdout)) return 1;

    auto wanted = [&](const char *name) {
        if (count < 2) return true;
        for (int i = 1; i < count; ++i)
            if (std::strcmp(arguments[i], name) == 0) return true;
        return false;
    };
    if (wanted("fill")) bench_gui::compare_fills(report);
    if (wanted("bmp")) bench_gui::compare_bitmaps(report);
    if (wanted("qr")) bench_gui::compare_qr_codes(report);
    return std::fclose(report);
}
