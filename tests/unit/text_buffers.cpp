/* Buffers of exact size for the text conversions; see text_buffers.h. */
#include "text_buffers.h"

#include "nvrhal.h"
#include "recording_expect.h"

#include <algorithm>
#include <cstring>

namespace text_test
{

namespace
{

constexpr size_t kSpareBytes = 2;

size_t room_for(int64_t bytes)
{
    return static_cast<size_t>(std::max<int64_t>(bytes, 0)) + kSpareBytes;
}

Bytes swapped(const Bytes &utf8, size_t longer, int (*swap)(const char *, char *))
{
    const auto in = exact(utf8, 1);
    const Conversion done = run(utf8.size() + longer, [&](uint8_t *out) {
        return swap(reinterpret_cast<const char *>(in.get()), reinterpret_cast<char *>(out));
    });
    EXPECT_EQ(done.result, 0);
    EXPECT_EQ(done.message, "");
    return done.written;
}

} // namespace

std::unique_ptr<uint8_t[]> exact(const Bytes &bytes, size_t zeros)
{
    auto block = std::make_unique<uint8_t[]>(bytes.size() + zeros);
    std::copy(bytes.begin(), bytes.end(), block.get());
    return block;
}

Bytes bytes_of(const std::string &text)
{
    return Bytes(text.begin(), text.end());
}

Bytes units(std::initializer_list<unsigned> values)
{
    Bytes bytes;
    for (unsigned value : values) {
        bytes.push_back(static_cast<uint8_t>(value >> 8));
        bytes.push_back(static_cast<uint8_t>(value));
    }
    return bytes;
}

std::string failure_printed()
{
    const std::string text = recording::printed_text();
    recording::forget_printed();
    const size_t prefix = text.rfind("[char_swap.c]-");
    if (prefix == std::string::npos) return "";
    const size_t message = text.find(": ", prefix) + 2;
    EXPECT_EQ(text.back(), '\n');
    return text.substr(message, text.size() - 1 - message);
}

Conversion run(size_t room, const std::function<int(uint8_t *out)> &convert)
{
    const Bytes low_mark(room, 0x5A), high_mark(room, 0xA5);
    const auto first = exact(low_mark, 0), second = exact(high_mark, 0);
    recording::forget_printed();

    Conversion done;
    done.result = convert(first.get());
    EXPECT_EQ(convert(second.get()), done.result);
    done.message = failure_printed();

    size_t end = room;
    while (end > 0 && first[end - 1] == 0x5A && second[end - 1] == 0xA5)
        --end;
    done.written.assign(first.get(), first.get() + end);
    EXPECT_TRUE(std::equal(done.written.begin(), done.written.end(), second.get())) << "a byte left out";
    return done;
}

Conversion gb2312_to_unicode(const Bytes &gb2312, int length, uint32_t out_size)
{
    const auto in = exact(gb2312, 0);
    const size_t room = room_for(std::min<int64_t>(out_size, 2 * std::max(length, 0)));
    return run(room, [&](uint8_t *out) { return FromGb2312ToUnicode(in.get(), length, out, out_size); });
}

Conversion unicode_to_gb2312(const Bytes &unicode, int out_size)
{
    const auto in = exact(unicode, 0);
    const size_t room = room_for(std::min<int64_t>(out_size, static_cast<int64_t>(unicode.size())));
    return run(room, [&](uint8_t *out) {
        return FromUnicodeToGb2312(in.get(), static_cast<uint32_t>(unicode.size()), out, out_size);
    });
}

Conversion unicode_to_utf8(const Bytes &unicode, int out_size)
{
    const auto in = exact(unicode, 2);
    const size_t room = static_cast<size_t>(std::max(out_size, 0));
    return run(room, [&](uint8_t *out) { return UnicodeToUTF8(in.get(), out, out_size); });
}

Conversion utf8_to_unicode(const Bytes &utf8, int out_size)
{
    const auto in = exact(utf8, 1);
    return run(room_for(out_size), [&](uint8_t *out) {
        return UTF8ToUnicode(reinterpret_cast<const char *>(in.get()), out, out_size);
    });
}

Bytes to_simplified(const Bytes &utf8, size_t longer)
{
    return swapped(utf8, longer, TraditionalToSimplifiedUTF8);
}

Bytes to_traditional(const Bytes &utf8, size_t longer)
{
    return swapped(utf8, longer, SimplifiedToTraditionalUTF8);
}

} // namespace text_test
