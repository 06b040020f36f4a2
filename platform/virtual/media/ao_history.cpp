/* ao_history.cpp - see ao_history.h. Sample n lies at n modulo the ring's size. */
#include "media/ao_history.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "media/time_units.h"

namespace vboard
{
namespace
{

constexpr double kFullScaleLevel = 32768;

} // namespace

SoundHistory::SoundHistory(uint32_t rate_hz, uint32_t kept_ms)
    : rate_hz_(rate_hz), ring_(size_t{rate_hz} * kept_ms / 1000)
{
}

void SoundHistory::begin_run(int64_t start_us)
{
    runs_.push_back({start_us, total_, 0});
}

void SoundHistory::append(const int16_t *samples, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        ring_[(total_ + i) % ring_.size()] = samples[i];
    total_ += count;
    runs_.back().count += count;
    while (runs_.size() > 1 && runs_[1].first <= first_kept())
        runs_.pop_front();
}

size_t SoundHistory::read(uint64_t first, int16_t *samples, size_t count) const
{
    if (first >= total_) return 0;
    const size_t have = static_cast<size_t>(std::min<uint64_t>(count, total_ - first));
    for (size_t i = 0; i < have; ++i)
        samples[i] = ring_[(first + i) % ring_.size()];
    return have;
}

SoundLevel SoundHistory::level(int64_t now_us, uint32_t window_ms) const
{
    const int64_t begin_us = now_us - int64_t{window_ms} * 1000;
    int peak = 0;
    double squares = 0;
    for (const Run &run : runs_) {
        uint64_t first = run.first;
        if (begin_us > run.start_us)
            first += static_cast<uint64_t>((begin_us - run.start_us) * rate_hz_ / kSecond_us);
        for (uint64_t i = std::max(first, first_kept()); i < run.first + run.count; ++i) {
            const int sample = ring_[i % ring_.size()];
            peak = std::max(peak, std::abs(sample));
            squares += static_cast<double>(sample) * sample;
        }
    }
    const double window_samples = static_cast<double>(window_ms) * rate_hz_ / 1000;
    return {peak / kFullScaleLevel, std::sqrt(squares / window_samples) / kFullScaleLevel};
}

} // namespace vboard
