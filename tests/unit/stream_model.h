/*
 * stream_model.h - what a pool must do, told by a list of all frames ever written.
 *
 * Numbers are 64-bit and never wrap: frame n is entry n of the endless index ring, its bytes lie at
 * an absolute position of the endless data ring. The ring's words are these numbers cut to 32 bits.
 */
#pragma once

#include "nvrhal.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace stream_test
{

struct ModelFrame {
    uint64_t entry; // absolute entry number
    uint64_t start; // absolute byte position
    uint64_t end;
    uint32_t type;
    uint32_t timestamp;
};

/** A reader as the model sees it. */
struct ModelReader {
    bool is_fresh = true; // positioned and nothing taken yet
    bool was_empty = false;
    uint64_t entry = 0;    // positioned on, or delivered last
    uint64_t position = 0; // absolute: where the next frame may start
};

class Model
{
public:
    Model(uint32_t data_size, uint32_t index_num, uint32_t safe_bytes, uint64_t first_lap)
        : data_size_(data_size), index_num_(index_num), safe_bytes_(safe_bytes),
          next_entry_(first_lap * index_num), next_byte_(first_lap * data_size)
    {
    }

    void write(uint32_t length, uint32_t type, uint32_t timestamp);

    ModelReader newest_position() const;
    std::optional<ModelReader> oldest_position() const;

    /** The frame that a read delivers, moving the reader; null = none, the reader stays. */
    const ModelFrame *read(ModelReader &reader, int32_t skip_limit) const;

    /** The words that a reader must hold. */
    StreamReader words(const ModelReader &reader) const;

    const std::vector<ModelFrame> &frames() const { return frames_; }

private:
    const ModelFrame *in_slot(uint64_t slot) const;
    const ModelFrame *frame(uint64_t entry) const;
    uint64_t lap_of(uint64_t byte) const { return byte / data_size_; }
    bool is_safe(uint64_t position) const;
    bool is_in_step(const ModelReader &reader) const;
    const ModelFrame *oldest_safe_key_frame() const;

    uint64_t data_size_, index_num_, safe_bytes_;
    uint64_t next_entry_, next_byte_;
    std::vector<ModelFrame> frames_;
};

} // namespace stream_test
