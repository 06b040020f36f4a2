/*
 * audio_tone.h - tones as A-law, and what came of them: the tone in a piece of sound by least
 * squares, and everything in it that is not the tone.
 *
 * A-law is written here from its definition, and shares nothing with the board's decoder.
 */
#ifndef AUDIO_TONE_H
#define AUDIO_TONE_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tone
{

constexpr double kInputRate_hz = 8000;
constexpr double kOutputRate_hz = 48000;

using Samples = std::vector<int16_t>;
using Bytes = std::vector<uint8_t>;

int16_t expand(uint8_t a_law);   // +-8 to +-32256
uint8_t compress(double sample); // the nearest there is

/* `count` A-law samples of a sine at 8 kHz, `skip` samples into it. Amplitude of 32768 at full scale. */
Bytes sine(double frequency_hz, double amplitude, size_t count, size_t skip = 0);
Samples expanded(const Bytes &a_law);

/* The best sine of that frequency in some sound. */
struct Fit {
    double amplitude;
    double rest_rms;  // of what is not the sine
    double rest_peak; // the largest of it: a click, a gap, a wrong sample
};
Fit fit(const Samples &sound, double frequency_hz, double rate_hz);

/* Frequency by upward zero crossings, of a sound that is little else than a sine. */
double frequency_hz(const Samples &sound, double rate_hz);

double decibels(double ratio);
double rms(const Samples &sound);

} // namespace tone

#endif
