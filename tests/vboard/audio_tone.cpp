/* audio_tone.cpp - see audio_tone.h. */
#include "audio_tone.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tone
{

// G.711: even bits inverted, sign, three bits of segment, four of the step within it; a segment is
// twice as coarse as the one before, the first two alike.
int16_t expand(uint8_t a_law)
{
    const unsigned bits = a_law ^ 0x55U;
    const unsigned segment = (bits >> 4) & 7;
    const unsigned step = bits & 15;
    int magnitude = static_cast<int>(2 * step + 1);
    if (segment > 0) magnitude = (magnitude + 32) << (segment - 1);
    magnitude *= 8; // 13 bits at the top of 16
    return static_cast<int16_t>((bits & 0x80) != 0 ? magnitude : -magnitude);
}

uint8_t compress(double sample)
{
    int best = 0;
    for (int code = 1; code < 256; ++code)
        if (std::abs(expand(static_cast<uint8_t>(code)) - sample) <
            std::abs(expand(static_cast<uint8_t>(best)) - sample))
            best = code;
    return static_cast<uint8_t>(best);
}

Bytes sine(double frequency_hz, double amplitude, size_t count, size_t skip)
{
    Bytes bytes(count);
    for (size_t i = 0; i < count; ++i) {
        const double turns = frequency_hz * static_cast<double>(i + skip) / kInputRate_hz;
        bytes[i] = compress(amplitude * std::sin(2 * std::numbers::pi * turns));
    }
    return bytes;
}

Samples expanded(const Bytes &a_law)
{
    Samples samples(a_law.size());
    std::transform(a_law.begin(), a_law.end(), samples.begin(), expand);
    return samples;
}

Fit fit(const Samples &sound, double frequency_hz, double rate_hz)
{
    const double turn = 2 * std::numbers::pi * frequency_hz / rate_hz;
    double ss = 0;
    double cc = 0;
    double sc = 0;
    double sy = 0;
    double cy = 0;
    for (size_t i = 0; i < sound.size(); ++i) {
        const double s = std::sin(turn * static_cast<double>(i));
        const double c = std::cos(turn * static_cast<double>(i));
        ss += s * s;
        cc += c * c;
        sc += s * c;
        sy += s * sound[i];
        cy += c * sound[i];
    }
    const double determinant = ss * cc - sc * sc;
    const double a = (sy * cc - cy * sc) / determinant;
    const double b = (cy * ss - sy * sc) / determinant;
    Fit result = {std::hypot(a, b), 0, 0};
    for (size_t i = 0; i < sound.size(); ++i) {
        const double angle = turn * static_cast<double>(i);
        const double rest = sound[i] - a * std::sin(angle) - b * std::cos(angle);
        result.rest_rms += rest * rest;
        result.rest_peak = std::max(result.rest_peak, std::abs(rest));
    }
    result.rest_rms = std::sqrt(result.rest_rms / static_cast<double>(sound.size()));
    return result;
}

double frequency_hz(const Samples &sound, double rate_hz)
{
    double first = -1;
    double last = -1;
    int turns = -1;
    for (size_t i = 1; i < sound.size(); ++i) {
        if (sound[i - 1] >= 0 || sound[i] < 0) continue;
        const double rise = sound[i] - sound[i - 1];
        last = static_cast<double>(i) - sound[i] / rise;
        if (first < 0) first = last;
        ++turns;
    }
    return turns > 0 ? turns * rate_hz / (last - first) : 0;
}

double decibels(double ratio)
{
    return 20 * std::log10(ratio);
}

double rms(const Samples &sound)
{
    double squares = 0;
    for (const int16_t sample : sound)
        squares += static_cast<double>(sample) * sample;
    return std::sqrt(squares / static_cast<double>(sound.size()));
}

} // namespace tone
