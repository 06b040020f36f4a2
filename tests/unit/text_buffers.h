/*
 * text_buffers.h - buffers of exact size for the text conversions, and their calls on them.
 *
 * Inputs stand on the heap in blocks of exactly their size, so that a sanitizer sees every read
 * past the end. Outputs are filled with a mark, and what the library wrote is told by what changed
 * in a run with one mark and in a run with another.
 */
#pragma once

#include "text_reference.h"

#include <functional>
#include <memory>
#include <string>

namespace text_test
{

using reference::Bytes;
using reference::Conversion;

/** The bytes and `zeros` zero bytes behind them, in a heap block of exactly that size. */
std::unique_ptr<uint8_t[]> exact(const Bytes &bytes, size_t zeros);

Bytes bytes_of(const std::string &text);

/** Units in the order of the text, high byte first. */
Bytes units(std::initializer_list<unsigned> values);

/** The text of the failure printed since the last call, without its prefix; "" when there is none. */
std::string failure_printed();

/**
 * Run a conversion into a buffer of `room` bytes, twice, and tell result, message and every byte
 * written. A byte left out between two written ones fails the test.
 */
Conversion run(size_t room, const std::function<int(uint8_t *out)> &convert);

// The library's conversions on exact buffers, with the two spare bytes that it asks for.
Conversion gb2312_to_unicode(const Bytes &gb2312, int length, uint32_t out_size);
Conversion unicode_to_gb2312(const Bytes &unicode, int out_size);
Conversion unicode_to_utf8(const Bytes &unicode, int out_size);
Conversion utf8_to_unicode(const Bytes &utf8, int out_size);
// The room is that of the input, and so many bytes more for entries that make a text longer.
Bytes to_simplified(const Bytes &utf8, size_t longer = 0);
Bytes to_traditional(const Bytes &utf8, size_t longer = 0);

} // namespace text_test
