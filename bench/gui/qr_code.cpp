/*
 * A QR image file beside the qrencode tool with the same symbol, module size and quiet zone. The
 * tool makes its symbol with the same encoder as the library does: the encoder's own time, without
 * any image, is what neither can get below.
 */
#include <cstdlib>
#include <qrencode.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "contest.h"
#include "nvrhal.h"

extern char **environ;

namespace bench_gui
{
namespace
{

bool run_tool(const std::string &path, const std::string &text)
{
    const char *arguments[] = {"qrencode", "-8", "-l", "L",  "-v",         "3",          "-s",
                               "6",        "-m", "2",  "-o", path.c_str(), text.c_str(), nullptr};
    pid_t child;
    if (posix_spawnp(&child, "qrencode", nullptr, nullptr, const_cast<char **>(arguments), environ) != 0)
        return false;
    int status = 0;
    return waitpid(child, &status, 0) == child && status == 0;
}

void compare(FILE *report, const std::string &text)
{
    char own_path[] = "/tmp/bench_gui_XXXXXX", tool_path[] = "/tmp/bench_gui_XXXXXX";
    for (char *path : {own_path, tool_path}) {
        const int descriptor = mkstemp(path);
        if (descriptor >= 0) close(descriptor);
    }
    if (!run_tool(tool_path, text)) {
        std::fprintf(report, "QR %4zu bytes: no qrencode tool\n", text.size());
    } else {
        std::vector<Contestant> contestants = {
            {"nvrhal",
             [&] {
                 unlink(own_path); // a new file: some file systems flush when an old one is overwritten
                 qrencode(text.c_str(), own_path);
             }},
            {"tool",
             [&] {
                 unlink(tool_path);
                 run_tool(tool_path, text);
             }},
            {"encoder",
             [&] { QRcode_free(QRcode_encodeString(text.c_str(), 3, QR_ECLEVEL_L, QR_MODE_8, 1)); }},
        };
        run(contestants, 60, 1);
        std::fprintf(report,
                     "QR %4zu bytes  nvrhal %.3f ms  qrencode tool %.3f ms  encoder alone %.3f ms  "
                     "| %.3f of the tool's time, the encoder alone %.3f\n",
                     text.size(), contestants[0].best_s * 1e3, contestants[1].best_s * 1e3,
                     contestants[2].best_s * 1e3, contestants[0].best_s / contestants[1].best_s,
                     contestants[2].best_s / contestants[1].best_s);
    }
    unlink(own_path);
    unlink(tool_path);
}

} // namespace

void compare_qr_codes(FILE *report)
{
    compare(report, "http://192.168.1.10");
    compare(report, std::string(200, 'n'));
    compare(report, std::string(2953, 'n'));
}

} // namespace bench_gui
