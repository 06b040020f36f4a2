/*
 * contest.h - several implementations of the same work, measured in one run. They take turns, so that
 * a disturbance of the machine affects all of them, and the best turn of each counts.
 */
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace bench_gui
{

struct Contestant {
    std::string name;
    std::function<void()> work; // once
    double best_s = 1e9;
};

inline double now_s()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

inline double turn_s(Contestant &contestant, int repetitions)
{
    const double start = now_s();
    for (int i = 0; i < repetitions; ++i)
        contestant.work();
    return (now_s() - start) / repetitions;
}

/** Let everybody take `turns` turns of `repetitions` works. The first contestant is the library. */
inline void run(std::vector<Contestant> &contestants, int turns, int repetitions)
{
    for (Contestant &contestant : contestants)
        contestant.work(); // warm
    for (int turn = 0; turn < turns; ++turn)
        for (Contestant &contestant : contestants)
            contestant.best_s = std::min(contestant.best_s, turn_s(contestant, repetitions));
}

void compare_fills(FILE *report);
void compare_bitmaps(FILE *report);
void compare_qr_codes(FILE *report);

} // namespace bench_gui
