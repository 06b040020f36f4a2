/*
 * resampler.h - mono samples from one rate to another, as one endless stream: block borders leave no
 * trace. One thread at a time.
 */
#ifndef VBOARD_RESAMPLER_H
#define VBOARD_RESAMPLER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace vboard
{

class Resampler
{
public:
    /* Rates in Hz. Null: no memory, or rates that cannot be converted. */
    static std::unique_ptr<Resampler> create(uint32_t from_hz, uint32_t to_hz);

    virtual ~Resampler() = default;

    /*
     * Convert `count` samples and append the result, +-1.0 at full scale. From the first block on
     * `count` samples give count * to / from samples; where that is no whole number, in the long
     * run. The signal comes out later than it went in by the filter's delay, 2 ms at 8 kHz.
     */
    virtual bool convert(const int16_t *samples, size_t count, std::vector<float> &out) = 0;

    /* A new sound follows: what the filter still holds of the old one is never heard. */
    virtual bool restart() = 0;
};

} // namespace vboard

#endif
