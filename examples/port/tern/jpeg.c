/*
 * jpeg.c - the simulated chip's JPEG encoder: a test picture of the asked size and quality. Baseline, three
 * components without subsampling; bars of colour, which is all that a chip without pictures can encode.
 */
#include <string.h>

#include "tern_inside.h"

enum { kBlock = 8, kCells = 64, kComponents = 3, kBars = 8 };

static const uint8_t zigzag[kCells] = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63,
};

/* The example tables of the standard, for luminance; all components use them. */
static const uint8_t quantiser[kCells] = {
    16, 11,  10,  16, 24, 40, 51, 61, 12,  12,  14,  19,  26, 58, 60, 55,  14,  13,  16,  24, 40, 57,
    69, 56,  14,  17, 22, 29, 51, 87, 80,  62,  18,  22,  37, 56, 68, 109, 103, 77,  24,  35, 55, 64,
    81, 104, 113, 92, 49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98,  112, 100, 103, 99,
};
static const uint8_t dc_counts[16] = {0, 1, 5, 1, 1, 1, 1, 1, 1};
static const uint8_t dc_values[12] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
static const uint8_t ac_counts[16] = {0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 0x7D};
static const uint8_t ac_values[162] = {
    0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51, 0x61, 0x07, 0x22,
    0x71, 0x14, 0x32, 0x81, 0x91, 0xA1, 0x08, 0x23, 0x42, 0xB1, 0xC1, 0x15, 0x52, 0xD1, 0xF0, 0x24, 0x33,
    0x62, 0x72, 0x82, 0x09, 0x0A, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x25, 0x26, 0x27, 0x28, 0x29, 0x2A, 0x34,
    0x35, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x53, 0x54, 0x55,
    0x56, 0x57, 0x58, 0x59, 0x5A, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x6A, 0x73, 0x74, 0x75, 0x76,
    0x77, 0x78, 0x79, 0x7A, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8A, 0x92, 0x93, 0x94, 0x95, 0x96,
    0x97, 0x98, 0x99, 0x9A, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xB2, 0xB3, 0xB4, 0xB5,
    0xB6, 0xB7, 0xB8, 0xB9, 0xBA, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xCA, 0xD2, 0xD3, 0xD4,
    0xD5, 0xD6, 0xD7, 0xD8, 0xD9, 0xDA, 0xE1, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0xE7, 0xE8, 0xE9, 0xEA, 0xF1,
    0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0xFA,
};

/* Y, Cb, Cr of the bars: white, yellow, cyan, green, magenta, red, blue, black. */
static const uint8_t bars[kBars][kComponents] = {
    {255, 128, 128}, {226, 0, 149}, {179, 171, 0},  {150, 43, 21},
    {105, 213, 235}, {76, 85, 255}, {29, 255, 107}, {0, 128, 128},
};

typedef struct Code {
    uint16_t bits;
    uint8_t length;
} Code;

typedef struct Writer {
    uint8_t *at, *end;
    int full;
    uint32_t bits;
    int count;
} Writer;

static void put(Writer *writer, unsigned byte)
{
    if (writer->at == writer->end)
        writer->full = 1;
    else
        *writer->at++ = (uint8_t)byte;
}

static void put_all(Writer *writer, const uint8_t *bytes, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        put(writer, bytes[i]);
}

static void put_marker(Writer *writer, unsigned marker, unsigned length)
{
    const uint8_t bytes[] = {0xFF, (uint8_t)marker, (uint8_t)(length >> 8), (uint8_t)length};
    put_all(writer, bytes, sizeof bytes);
}

static void put_bits(Writer *writer, unsigned bits, int count)
{
    while (count-- > 0) {
        writer->bits = writer->bits << 1 | (bits >> count & 1);
        if (++writer->count < 8) continue;
        put(writer, writer->bits & 0xFF);
        if ((writer->bits & 0xFF) == 0xFF) put(writer, 0);
        writer->count = 0;
    }
}

static void fill_byte(Writer *writer)
{
    while (writer->count != 0)
        put_bits(writer, 1, 1);
}

/* Huffman codes by value. */
static void make_codes(Code codes[256], const uint8_t counts[16], const uint8_t *values)
{
    unsigned next = 0;
    for (int length = 1; length <= 16; ++length, next <<= 1)
        for (int i = 0; i < counts[length - 1]; ++i)
            codes[*values++] = (Code){(uint16_t)next++, (uint8_t)length};
}

static int bit_length(int value)
{
    int length = 0;
    for (unsigned left = (unsigned)(value < 0 ? -value : value); left != 0; left >>= 1)
        ++length;
    return length;
}

static void put_number(Writer *writer, int value, int length)
{
    put_bits(writer, (unsigned)(value < 0 ? value + (1 << length) - 1 : value), length);
}

/* cos((2 x + 1) u pi / 16) / 2, for u = 0 over the root of 2, in 4096ths. */
static const int cosines[kBlock][kBlock] = {
    {1448, 1448, 1448, 1448, 1448, 1448, 1448, 1448},     {2009, 1703, 1138, 400, -400, -1138, -1703, -2009},
    {1892, 784, -784, -1892, -1892, -784, 784, 1892},     {1703, -400, -2009, -1138, 1138, 2009, 400, -1703},
    {1448, -1448, -1448, 1448, 1448, -1448, -1448, 1448}, {1138, -2009, 400, 1703, -1703, -400, 2009, -1138},
    {784, -1892, 1892, -784, -784, 1892, -1892, 784},     {400, -1138, 1703, -2009, 2009, -1703, 1138, -400},
};

/* Rows of a block are alike: only its first row of frequencies is not zero. */
static void transform(const int samples[kBlock], const unsigned table[kCells], int out[kCells])
{
    memset(out, 0, kCells * sizeof *out);
    for (int u = 0; u < kBlock; ++u) {
        int64_t sum = 0;
        for (int x = 0; x < kBlock; ++x)
            sum += (int64_t)cosines[u][x] * samples[x];
        /* The other dimension of a constant: 8 / (2 root 2). */
        const int64_t value = sum * 11585 / 4096 / 4096;
        const int64_t step = table[u];
        out[u] = (int)((value + (value < 0 ? -step : step) / 2) / step);
    }
}

static void put_block(Writer *writer, const Code dc[256], const Code ac[256], const int out[kCells],
                      int *last)
{
    const int difference = out[0] - *last;
    *last = out[0];
    int length = bit_length(difference);
    put_bits(writer, dc[length].bits, dc[length].length);
    put_number(writer, difference, length);
    int zeros = 0;
    for (int i = 1; i < kCells; ++i) {
        const int value = out[zigzag[i]];
        if (value == 0) {
            ++zeros;
            continue;
        }
        for (; zeros > 15; zeros -= 16)
            put_bits(writer, ac[0xF0].bits, ac[0xF0].length);
        length = bit_length(value);
        const Code code = ac[zeros << 4 | length];
        put_bits(writer, code.bits, code.length);
        put_number(writer, value, length);
        zeros = 0;
    }
    if (zeros > 0) put_bits(writer, ac[0].bits, ac[0].length);
}

static void put_huffman(Writer *writer, unsigned kind, const uint8_t counts[16], const uint8_t *values,
                        unsigned count)
{
    put_marker(writer, 0xC4, 19 + count);
    put(writer, kind);
    put_all(writer, counts, 16);
    put_all(writer, values, count);
}

static void put_headers(Writer *writer, const TernGrab *grab, const unsigned table[kCells], unsigned interval)
{
    put(writer, 0xFF);
    put(writer, 0xD8);
    put_marker(writer, 0xDB, 67);
    put(writer, 0);
    for (int i = 0; i < kCells; ++i)
        put(writer, table[zigzag[i]]);
    put_marker(writer, 0xC0, 8 + 3 * kComponents);
    const uint8_t frame[] = {8,
                             (uint8_t)(grab->height >> 8),
                             (uint8_t)grab->height,
                             (uint8_t)(grab->width >> 8),
                             (uint8_t)grab->width,
                             kComponents};
    put_all(writer, frame, sizeof frame);
    for (unsigned i = 1; i <= kComponents; ++i)
        put_all(writer, (const uint8_t[]){(uint8_t)i, 0x11, 0}, 3);
    put_huffman(writer, 0x00, dc_counts, dc_values, sizeof dc_values);
    put_huffman(writer, 0x10, ac_counts, ac_values, sizeof ac_values);
    if (interval > 0) {
        put_marker(writer, 0xDD, 4);
        put(writer, interval >> 8);
        put(writer, interval);
    }
    put_marker(writer, 0xDA, 6 + 2 * kComponents);
    put(writer, kComponents);
    for (unsigned i = 1; i <= kComponents; ++i)
        put_all(writer, (const uint8_t[]){(uint8_t)i, 0}, 2);
    put_all(writer, (const uint8_t[]){0, 63, 0}, 3);
}

static void make_table(unsigned table[kCells], unsigned percent)
{
    const unsigned scale = percent < 50 ? 5000 / percent : 200 - 2 * percent;
    for (int i = 0; i < kCells; ++i) {
        const unsigned step = (quantiser[i] * scale + 50) / 100;
        table[i] = step < 1 ? 1 : step > 255 ? 255 : step;
    }
}

size_t tern_jpeg(const TernGrab *grab)
{
    unsigned table[kCells];
    Code dc[256] = {{0, 0}}, ac[256] = {{0, 0}};
    make_table(table, grab->percent);
    make_codes(dc, dc_counts, dc_values);
    make_codes(ac, ac_counts, ac_values);

    const unsigned columns = (grab->width + kBlock - 1) / kBlock, rows = (grab->height + kBlock - 1) / kBlock;
    const unsigned interval = grab->restart_rows * columns <= 0xFFFF ? grab->restart_rows * columns : 0;
    Writer writer = {grab->buffer, grab->buffer + grab->room, 0, 0, 0};
    put_headers(&writer, grab, table, interval);
    int last[kComponents] = {0, 0, 0};
    unsigned restarts = 0;
    for (unsigned block = 0; block < columns * rows; ++block) {
        if (interval > 0 && block > 0 && block % interval == 0) {
            fill_byte(&writer);
            put(&writer, 0xFF);
            put(&writer, 0xD0 + restarts++ % 8);
            memset(last, 0, sizeof last);
        }
        for (int component = 0; component < kComponents; ++component) {
            int samples[kBlock], out[kCells];
            for (unsigned x = 0; x < kBlock; ++x) {
                const unsigned at = block % columns * kBlock + x;
                const unsigned bar = at * kBars / grab->width;
                samples[x] = bars[bar < kBars ? bar : kBars - 1][component] - 128;
            }
            transform(samples, table, out);
            put_block(&writer, dc, ac, out, &last[component]);
        }
    }
    fill_byte(&writer);
    put(&writer, 0xFF);
    put(&writer, 0xD9);
    return writer.full ? 0 : (size_t)(writer.at - grab->buffer);
}
