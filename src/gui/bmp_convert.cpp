/* bmp_convert.cpp - see bmp_convert.h. */
#include "gui/bmp_convert.h"

#include <cstring>

#include "nvrhal.h"

namespace nvrhal
{
namespace
{

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "words are loaded straight from the file's bytes");

constexpr uint32_t kOpaque = 0xFF000000u;

uint32_t load_word32(const uint8_t *bytes)
{
    uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Four pixels in a vector, each loaded as a word whose highest byte is the next pixel's blue: of the
// last one that byte must be there, hence the loops end before the last pixel.
typedef uint32_t FourPixels __attribute__((vector_size(16)));

// Four pixels, `step` pixels from one to the next. Vectors are passed by reference: passing one by
// value has no stable calling convention on machines without vector registers.
inline void load_four(const uint8_t *from, size_t step, FourPixels *pixels)
{
    const size_t next = 3 * step;
    *pixels = FourPixels{load_word32(from), load_word32(from + next), load_word32(from + 2 * next),
                         load_word32(from + 3 * next)};
}

uint32_t unpack_one(const uint8_t *from)
{
    return from[0] | static_cast<uint32_t>(from[1]) << 8 | static_cast<uint32_t>(from[2]) << 16 | kOpaque;
}

// What OSD_MAKECOLOR_U16 does to blue, green and red of one pixel word, as shifts and masks that
// are worked out once.
class Packer
{
public:
    explicit Packer(const OsdCompInfo &widths)
        : blue_shift_(8 - widths.low_bits), green_shift_(16 - widths.middle_bits - widths.high_bits),
          red_shift_(24 - 2 * widths.high_bits - widths.middle_bits), blue_mask_(ones(widths.low_bits)),
          green_mask_(ones(widths.middle_bits) << widths.high_bits),
          red_mask_(ones(widths.high_bits) << (widths.middle_bits + widths.high_bits)),
          alpha_(0xFFFFu & ~(0xFFFFu >> widths.alpha_bits))
    {
    }

    // One pixel word, or four, in place.
    template <typename Words> void operator()(Words *pixel) const
    {
        *pixel = (*pixel >> blue_shift_ & blue_mask_) | (*pixel >> green_shift_ & green_mask_) |
                 (*pixel >> red_shift_ & red_mask_) | alpha_;
    }

private:
    static constexpr uint32_t ones(uint32_t bits) { return (1u << bits) - 1; }

    uint32_t blue_shift_, green_shift_, red_shift_;
    uint32_t blue_mask_, green_mask_, red_mask_, alpha_;
};

} // namespace

void convert_bgr24_to_32(const uint8_t *from, uint8_t *to, size_t pixels)
{
    constexpr size_t kAtOnce = 4;
    for (; pixels > kAtOnce; pixels -= kAtOnce, from += 3 * kAtOnce, to += 4 * kAtOnce) {
        FourPixels four;
        load_four(from, 1, &four);
        four |= kOpaque;
        std::memcpy(to, &four, sizeof four);
    }
    for (; pixels > 0; --pixels, from += 3, to += 4) {
        const uint32_t one = unpack_one(from);
        std::memcpy(to, &one, sizeof one);
    }
}

void convert_bgr24_to_16(const uint8_t *from, uint8_t *to, size_t pixels, uint32_t color_format)
{
    const Packer pack(s_OSDCompInfo[color_format]);
    // Eight pixels: the even ones are packed into the lower halves of four words, the odd ones into
    // the upper halves, which is how they lie in memory.
    constexpr size_t kAtOnce = 8;
    for (; pixels > kAtOnce; pixels -= kAtOnce, from += 3 * kAtOnce, to += 2 * kAtOnce) {
        FourPixels even, odd;
        load_four(from, 2, &even);
        load_four(from + 3, 2, &odd);
        pack(&even);
        pack(&odd);
        even |= odd << 16;
        std::memcpy(to, &even, sizeof even);
    }
    for (; pixels > 0; --pixels, from += 3, to += 2) {
        uint32_t one = unpack_one(from);
        pack(&one);
        const auto packed = static_cast<uint16_t>(one);
        std::memcpy(to, &packed, sizeof packed);
    }
}

} // namespace nvrhal
