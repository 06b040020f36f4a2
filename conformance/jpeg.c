/* jpeg.c - reads the headers and the mean values of a baseline JPEG. See jpeg.h. */
#include "jpeg.h"

#include <stdlib.h>
#include <string.h>

#include "hooks.h"
#include "suite.h"

typedef struct Huffman {
    uint8_t count[17]; /* codes of each length, 1 to 16 */
    uint8_t symbol[256];
} Huffman;

typedef struct Component {
    uint32_t id, table, dc, ac; /* quantization and Huffman tables */
    int previous;               /* mean of the block before        */
} Component;

typedef struct Reader {
    const uint8_t *at, *end;
    uint32_t bits;
    int bit_count;
    bool starved; /* a marker or the end came where bits were wanted */
    Huffman dc[4], ac[4];
    uint32_t first_quantizer[4], quantizer_sum[4];
    Component component[3];
    JpegLook *look;
} Reader;

static bool fault(Reader *reader, const char *why)
{
    if (reader->look->fault == NULL) reader->look->fault = why;
    return false;
}

static int next_bit(Reader *reader)
{
    if (reader->bit_count == 0) {
        if (reader->end - reader->at < 2) {
            reader->starved = true;
            return 0;
        }
        reader->bits = *reader->at;
        if (reader->bits == 0xFF) {
            if (reader->at[1] != 0) {
                reader->starved = true;
                return 0;
            }
            ++reader->at; /* a stuffed zero */
        }
        ++reader->at;
        reader->bit_count = 8;
    }
    --reader->bit_count;
    return (int)(reader->bits >> reader->bit_count & 1);
}

static int next_symbol(Reader *reader, const Huffman *table)
{
    int code = 0, first = 0, index = 0;
    for (int length = 1; length <= 16; ++length) {
        code |= next_bit(reader);
        const int count = table->count[length];
        if (code - first < count) return table->symbol[index + code - first];
        index += count;
        first = (first + count) << 1;
        code <<= 1;
    }
    reader->starved = true;
    return 0;
}

static int next_value(Reader *reader, int bits)
{
    int value = 0;
    for (int i = 0; i < bits; ++i)
        value = value << 1 | next_bit(reader);
    if (bits > 0 && value < 1 << (bits - 1)) value -= (1 << bits) - 1;
    return value;
}

static int next_block(Reader *reader, Component *component)
{
    const int size = next_symbol(reader, &reader->dc[component->dc]);
    component->previous += next_value(reader, size & 15);
    for (int i = 1; i < 64 && !reader->starved; ++i) {
        const int symbol = next_symbol(reader, &reader->ac[component->ac]);
        const int length = symbol & 15;
        if (length == 0 && symbol != 0xF0) break;
        i += symbol >> 4;
        if (length > 0) next_value(reader, length);
    }
    return component->previous * (int)reader->first_quantizer[component->table] / 8 + 128;
}

static uint32_t word(const uint8_t *at)
{
    return (uint32_t)at[0] << 8 | at[1];
}

static bool read_quantizers(Reader *reader, const uint8_t *at, size_t size)
{
    while (size >= 65) {
        const uint32_t wide = at[0] >> 4, table = at[0] & 3;
        if (wide > 1 || size < 1 + 64u * (wide + 1)) return fault(reader, "bad quantization table");
        reader->first_quantizer[table] = wide ? word(at + 1) : at[1];
        reader->quantizer_sum[table] = 0;
        for (int i = 0; i < 64; ++i)
            reader->quantizer_sum[table] += wide ? word(at + 1 + 2 * i) : at[1 + i];
        at += 1 + 64 * (wide + 1);
        size -= 1 + 64 * (wide + 1);
    }
    return true;
}

static bool read_huffman(Reader *reader, const uint8_t *at, size_t size)
{
    while (size >= 17) {
        Huffman *table = (at[0] & 0x10) != 0 ? &reader->ac[at[0] & 3] : &reader->dc[at[0] & 3];
        uint32_t symbols = 0;
        for (int length = 1; length <= 16; ++length)
            symbols += table->count[length] = at[length];
        if (symbols > 256 || size < 17 + symbols) return fault(reader, "bad Huffman table");
        memcpy(table->symbol, at + 17, symbols);
        at += 17 + symbols;
        size -= 17 + symbols;
    }
    return true;
}

static bool read_frame(Reader *reader, const uint8_t *at, size_t size)
{
    JpegLook *look = reader->look;
    if (size < 15 || at[0] != 8 || at[5] != 3) return fault(reader, "not 8 bits and three components");
    look->height = word(at + 1);
    look->width = word(at + 3);
    for (int i = 0; i < 3; ++i) {
        reader->component[i].id = at[6 + 3 * i];
        look->horizontal[i] = at[7 + 3 * i] >> 4;
        look->vertical[i] = at[7 + 3 * i] & 15;
        reader->component[i].table = at[8 + 3 * i] & 3;
        if (look->horizontal[i] < 1 || look->horizontal[i] > 2 || look->vertical[i] < 1 ||
            look->vertical[i] > 2)
            return fault(reader, "unusual sampling");
    }
    look->quantizer = reader->quantizer_sum[reader->component[0].table];
    return look->width > 0 && look->height > 0 ? true : fault(reader, "no size");
}

/* Between two restart intervals stands a marker, on a whole byte. */
static bool restart(Reader *reader)
{
    reader->bit_count = 0;
    if (reader->end - reader->at < 2 || reader->at[0] != 0xFF || (reader->at[1] & 0xF8) != 0xD0)
        return fault(reader, "a restart marker is missing");
    reader->at += 2;
    ++reader->look->restarts;
    for (int i = 0; i < 3; ++i)
        reader->component[i].previous = 0;
    return true;
}

static bool read_scan(Reader *reader, const uint8_t *header, size_t size)
{
    JpegLook *look = reader->look;
    if (look->width == 0 || size < 10 || header[0] != 3) return fault(reader, "not one scan of everything");
    for (int i = 0; i < 3; ++i) {
        reader->component[i].dc = header[2 + 2 * i] >> 4 & 3;
        reader->component[i].ac = header[2 + 2 * i] & 3;
    }
    const uint32_t mcu_width = 8 * look->horizontal[0], mcu_height = 8 * look->vertical[0];
    const uint32_t columns = (look->width + mcu_width - 1) / mcu_width;
    const uint32_t rows = (look->height + mcu_height - 1) / mcu_height;
    for (int i = 0; i < 3; ++i) {
        look->across[i] = columns * look->horizontal[i];
        const size_t blocks = (size_t)look->across[i] * rows * look->vertical[i];
        if (blocks > JPEG_MOST_BLOCKS) return fault(reader, "too large");
        look->mean[i] = calloc(blocks, sizeof *look->mean[i]);
        if (look->mean[i] == NULL) return fault(reader, "no memory");
    }
    for (uint32_t mcu = 0; mcu < columns * rows; ++mcu) {
        if (look->restart_interval > 0 && mcu > 0 && mcu % look->restart_interval == 0 && !restart(reader))
            return false;
        for (int i = 0; i < 3; ++i)
            for (uint32_t block = 0; block < look->horizontal[i] * look->vertical[i]; ++block) {
                const uint32_t x = mcu % columns * look->horizontal[i] + block % look->horizontal[i];
                const uint32_t y = mcu / columns * look->vertical[i] + block / look->horizontal[i];
                look->mean[i][(size_t)y * look->across[i] + x] =
                    (int16_t)next_block(reader, &reader->component[i]);
            }
        if (reader->starved) return fault(reader, "the picture is cut short");
    }
    reader->bit_count = 0;
    if (reader->end - reader->at < 2 || reader->at[0] != 0xFF || reader->at[1] != 0xD9)
        return fault(reader, "no end of image behind the last block");
    return true;
}

bool jpeg_look(const uint8_t *bytes, size_t size, JpegLook *look)
{
    static const JpegLook nothing;
    *look = nothing;
    Reader *reader = calloc(1, sizeof *reader);
    if (reader == NULL) {
        look->fault = "no memory";
        return false;
    }
    reader->look = look;
    reader->at = bytes;
    reader->end = bytes + size;
    bool good = size >= 4 && bytes[0] == 0xFF && bytes[1] == 0xD8;
    bool scanned = false;
    if (!good) fault(reader, "does not begin with a start of image");
    reader->at += 2;
    while (good && !scanned) {
        if (reader->end - reader->at < 4 || reader->at[0] != 0xFF) {
            good = fault(reader, "no marker where one must be");
            break;
        }
        const uint32_t marker = reader->at[1], length = word(reader->at + 2);
        const uint8_t *payload = reader->at + 4;
        if (length < 2 || (size_t)(reader->end - reader->at) < 2 + (size_t)length) {
            good = fault(reader, "a segment is cut short");
            break;
        }
        reader->at += 2 + length;
        switch (marker) {
        case 0xDB: good = read_quantizers(reader, payload, length - 2); break;
        case 0xC4: good = read_huffman(reader, payload, length - 2); break;
        case 0xC0:
        case 0xC1: good = read_frame(reader, payload, length - 2); break;
        case 0xDD: look->restart_interval = length >= 4 ? word(payload) : 0; break;
        case 0xDA:
            good = read_scan(reader, payload, length - 2);
            scanned = true;
            break;
        default: break;
        }
    }
    free(reader);
    return good;
}

void jpeg_free(JpegLook *look)
{
    for (int i = 0; i < 3; ++i) {
        free(look->mean[i]);
        look->mean[i] = NULL;
    }
}

static uint8_t clipped(double value)
{
    return value < 0 ? 0 : value > 255 ? 255 : (uint8_t)(value + 0.5);
}

void jpeg_colour(const JpegLook *look, uint32_t x, uint32_t y, uint8_t rgb[3])
{
    if (conformance_hooks.decodes_nothing)
        not_tried("this board decodes nothing: snapshots do not show what was sent");
    double value[3];
    for (int i = 0; i < 3; ++i) {
        const uint32_t column = x * look->horizontal[i] / (8 * look->horizontal[0]);
        const uint32_t row = y * look->vertical[i] / (8 * look->vertical[0]);
        value[i] = look->mean[i][(size_t)row * look->across[i] + column];
    }
    rgb[0] = clipped(value[0] + 1.402 * (value[2] - 128));
    rgb[1] = clipped(value[0] - 0.344 * (value[1] - 128) - 0.714 * (value[2] - 128));
    rgb[2] = clipped(value[0] + 1.772 * (value[1] - 128));
}
