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

// Four pixels are three words: B0G0R0B1 G1R1B2G2 R2B3G3R3, lowest byte first.
void unpack_four(const uint8_t *from, uint32_t (&pixels)[4])
{
    const uint32_t first = load_word32(from);
    const uint32_t second = load_word32(from + 4);
    const uint32_t third = load_word32(from + 8);
    pixels[0] = first | kOpaque;
    pixels[1] = first >> 24 | second << 8 | kOpaque;
    pixels[2] = second >> 16 | third << 16 | kOpaque;
    pixels[3] = third >> 8 | kOpaque;
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

    uint16_t operator()(uint32_t pixel) const
    {
        return static_cast<uint16_t>((pixel >> blue_shift_ & blue_mask_) |
                                     (pixel >> green_shift_ & green_mask_) |
                                     (pixel >> red_shift_ & red_mask_) | alpha_);
    }

private:
    static constexpr uint32_t ones(uint32_t bits) { return (1u << bits) - 1; }

    uint32_t blue_shift_, green_shift_, red_shift_;
    uint32_t blue_mask_, green_mask_, red_mask_, alpha_;
};

} // namespace

void convert_bgr24_to_32(const uint8_t *from, uint8_t *to, size_t pixels)
{
    for (; pixels >= 4; pixels -= 4, from += 12, to += 16) {
        uint32_t four[4];
        unpack_four(from, four);
        std::memcpy(to, four, sizeof four);
    }
    for (; pixels > 0; --pixels, from += 3, to += 4) {
        const uint32_t one = unpack_one(from);
        std::memcpy(to, &one, sizeof one);
    }
}

void convert_bgr24_to_16(const uint8_t *from, uint8_t *to, size_t pixels, uint32_t color_format)
{
    const Packer pack(s_OSDCompInfo[color_format]);
    for (; pixels >= 4; pixels -= 4, from += 12, to += 8) {
        uint32_t four[4];
        unpack_four(from, four);
        const uint16_t packed[4] = {pack(four[0]), pack(four[1]), pack(four[2]), pack(four[3])};
        std::memcpy(to, packed, sizeof packed);
    }
    for (; pixels > 0; --pixels, from += 3, to += 2) {
        const uint16_t packed = pack(unpack_one(from));
        std::memcpy(to, &packed, sizeof packed);
    }
}

} // namespace nvrhal
