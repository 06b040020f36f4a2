/* Contestants in turns; see contest.h. */
#include "contest.h"

#include <algorithm>
#include <chrono>

namespace bench_text
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr int kTurns = 9;
constexpr double kTurnNs = 20e6; // long enough for the clock, short enough for nine turns of all

double time_ns(const Contestant &contestant, int repeats)
{
    size_t bytes = 0;
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < repeats; ++i)
        bytes += contestant.convert().size();
    const double elapsed = std::chrono::duration<double, std::nano>(Clock::now() - start).count();
    return bytes > 0 ? elapsed / repeats : 0;
}

} // namespace

bool compare(FILE *report, const char *title, size_t characters, const std::vector<Contestant> &contestants)
{
    std::fprintf(report, "%s, %zu characters\n", title, characters);
    const std::string expected = contestants[0].convert();
    std::vector<int> repeats;
    for (const Contestant &contestant : contestants) {
        if (contestant.same_result && contestant.convert() != expected) {
            std::fprintf(report, "  %s gives another result than %s\n", contestant.name, contestants[0].name);
            return false;
        }
        repeats.push_back(static_cast<int>(std::max(1.0, kTurnNs / std::max(1.0, time_ns(contestant, 1)))));
    }

    std::vector<double> best(contestants.size(), 1e300);
    for (int turn = 0; turn < kTurns; ++turn)
        for (size_t i = 0; i < contestants.size(); ++i)
            best[i] = std::min(best[i], time_ns(contestants[i], repeats[i]));

    for (size_t i = 0; i < contestants.size(); ++i)
        std::fprintf(report, "  %-28s %9.1f ns a character  x%.2f\n", contestants[i].name,
                     best[i] / static_cast<double>(characters), best[i] / best[0]);
    std::fflush(report);
    return true;
}

} // namespace bench_text
