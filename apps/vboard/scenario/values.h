/*
 * values.h - values of a scenario as people write them: durations (40ms, 2s, 1.5s, 1m), shares (2%),
 * comparisons (">= 50", "< 200 MB"). Any thread.
 */
#ifndef VBOARD_APP_SCENARIO_VALUES_H
#define VBOARD_APP_SCENARIO_VALUES_H

#include <cstdint>
#include <optional>
#include <string>

namespace vboard_app::scenario
{

constexpr int64_t kLongest_us = 24LL * 3600 * 1'000'000; // that a scenario may name

/* A duration with a unit, 0 to a day; "0" needs none. */
std::optional<int64_t> duration_of(const std::string &text);

/* The same duration as text, in the largest unit that keeps it whole. */
std::string duration_text(int64_t microseconds);

/* 2%, 0.5 %, 2: of a hundred. */
std::optional<double> percent_of(const std::string &text);

/* A finite number, nothing else behind it. */
std::optional<double> number_of(const std::string &text);
std::optional<int64_t> integer_of(const std::string &text);
std::optional<bool> boolean_of(const std::string &text);

/* "50", "= 50", "!= 0", "< 200 MB", ">= 1": kB, MB and GB are units of 1024, as tools show memory. */
struct Comparison {
    enum class Relation { equal, unequal, less, less_equal, greater, greater_equal };

    Relation relation = Relation::equal;
    double value = 0;

    bool holds(double seen) const;
};
std::optional<Comparison> comparison_of(const std::string &text);

} // namespace vboard_app::scenario

#endif
