/* GB2312, Unicode and UTF-8 beside iconv and beside a plain scan of the same table. */
#include "contest.h"

#include "nvrhal.h"

#include <iconv.h>

#include <algorithm>
#include <random>

namespace bench_text
{
namespace
{

using Text = std::string;

const uint8_t *bytes(const Text &text)
{
    return reinterpret_cast<const uint8_t *>(text.data());
}

uint8_t *bytes(Text &text)
{
    return reinterpret_cast<uint8_t *>(text.data());
}

unsigned two_bytes(const Text &text, size_t at)
{
    return static_cast<uint8_t>(text[at]) << 8u | static_cast<uint8_t>(text[at + 1]);
}

void append_two(Text &text, unsigned value)
{
    text += static_cast<char>(value >> 8);
    text += static_cast<char>(value);
}

/** A converter that stays open over all turns. */
class Iconv
{
public:
    Iconv(const char *to, const char *from) : converter_(iconv_open(to, from)) {}
    ~Iconv() { iconv_close(converter_); }
    Iconv(const Iconv &) = delete;
    Iconv &operator=(const Iconv &) = delete;

    Text convert(const Text &text)
    {
        Text out(2 * text.size(), '\0');
        char *in_at = const_cast<char *>(text.data()), *out_at = out.data();
        size_t in_left = text.size(), out_left = out.size();
        iconv(converter_, &in_at, &in_left, &out_at, &out_left);
        out.resize(out.size() - out_left);
        return out;
    }

private:
    iconv_t converter_;
};

/** Row after row, leaving at the first match: what the library's scan is measured against. */
template <uint16_t UnicodeGb2312::*Key, uint16_t UnicodeGb2312::*Value> Text by_plain_scan(const Text &text)
{
    Text out;
    out.reserve(text.size());
    for (size_t at = 0; at < text.size(); at += 2) {
        const unsigned key = two_bytes(text, at);
        for (long row = 0; row < TableLen; ++row) {
            if (Unicode_GB2312[row].*Key != key) continue;
            append_two(out, Unicode_GB2312[row].*Value);
            break;
        }
    }
    return out;
}

// The conversions write an end behind the text; it is cut off for comparison.

Text gb2312_to_unicode(const Text &text)
{
    Text out(text.size() + 2, '\0');
    FromGb2312ToUnicode(bytes(text), static_cast<int>(text.size()), bytes(out),
                        static_cast<uint32_t>(text.size()));
    out.resize(text.size());
    return out;
}

Text unicode_to_gb2312(const Text &text)
{
    Text out(text.size() + 2, '\0');
    FromUnicodeToGb2312(bytes(text), static_cast<uint32_t>(text.size()), bytes(out),
                        static_cast<int>(text.size()));
    out.resize(text.size());
    return out;
}

Text unicode_to_utf8(const Text &text)
{
    Text out(text.size() / 2 * 3 + 1, '\0');
    UnicodeToUTF8(bytes(text), bytes(out), static_cast<int>(out.size()));
    out.resize(out.find('\0'));
    return out;
}

Text utf8_to_unicode(const Text &text, size_t characters)
{
    Text out(2 * characters + 2, '\0');
    UTF8ToUnicode(text.c_str(), bytes(out), static_cast<int>(2 * characters));
    out.resize(2 * characters);
    return out;
}

} // namespace

bool compare_encodings(FILE *report)
{
    InitTransformationTable();
    // Every character once, in no order, so that a look-up goes through half the table on average.
    std::vector<UnicodeGb2312> characters(std::begin(Unicode_GB2312), std::end(Unicode_GB2312));
    std::shuffle(characters.begin(), characters.end(), std::mt19937{7445});
    Text gb2312, unicode;
    for (const UnicodeGb2312 &character : characters) {
        append_two(gb2312, character.gb2312);
        append_two(unicode, character.unicode);
    }
    Text unicode_and_end = unicode;
    append_two(unicode_and_end, 0);
    const Text utf8 = unicode_to_utf8(unicode_and_end);

    Iconv to_unicode("UTF-16BE", "GB2312"), to_gb2312("GB2312", "UTF-16BE");
    Iconv to_utf8("UTF-8", "UTF-16BE"), from_utf8("UTF-16BE", "UTF-8");
    const size_t count = characters.size();
    return compare(report, "GB2312 to Unicode", count,
                   {{"nvrhal", [&] { return gb2312_to_unicode(gb2312); }, true},
                    {"plain scan",
                     [&] { return by_plain_scan<&UnicodeGb2312::gb2312, &UnicodeGb2312::unicode>(gb2312); },
                     true},
                    {"iconv (indexed)", [&] { return to_unicode.convert(gb2312); }, true}}) &&
           compare(report, "Unicode to GB2312", count,
                   {{"nvrhal", [&] { return unicode_to_gb2312(unicode); }, true},
                    {"plain scan",
                     [&] { return by_plain_scan<&UnicodeGb2312::unicode, &UnicodeGb2312::gb2312>(unicode); },
                     true},
                    {"iconv (indexed)", [&] { return to_gb2312.convert(unicode); }, true}}) &&
           compare(report, "Unicode to UTF-8", count,
                   {{"nvrhal", [&] { return unicode_to_utf8(unicode_and_end); }, true},
                    {"iconv", [&] { return to_utf8.convert(unicode); }, true}}) &&
           compare(report, "UTF-8 to Unicode", count,
                   {{"nvrhal", [&] { return utf8_to_unicode(utf8, count); }, true},
                    {"iconv", [&] { return from_utf8.convert(utf8); }, true}});
}

} // namespace bench_text
