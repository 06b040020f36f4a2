/* file_extent_mkv.cpp - see file_extent.h: elements of an identifier, a size and a body each. */
#include "archive/file_extent_mkv.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

namespace nvrec
{
namespace
{

constexpr uint32_t kEbml = 0x1A45DFA3, kSegment = 0x18538067, kInfo = 0x1549A966, kTracks = 0x1654AE6B,
                   kCluster = 0x1F43B675, kTimestampScale = 0x2AD7B1, kTitle = 0x7BA9, kDate = 0x4461,
                   kDuration = 0x4489, kTrack = 0xAE, kDefaultDuration = 0x23E383, kTrackType = 0x83,
                   kTrackNumber = 0xD7, kTimestamp = 0xE7, kSimpleBlock = 0xA3, kBlockGroup = 0xA0,
                   kBlock = 0xA1;
constexpr int64_t kDatesBegin_us = 978'307'200'000'000; /* 2001 in UTC */
constexpr uint64_t kUnknown = UINT64_MAX;
constexpr int64_t kLargestMkvHead_bytes = 16 << 20;
constexpr uint64_t kVideo = 1;
constexpr size_t kLongestHead = 12; /* of an element: 4 and 8 bytes */

struct Element {
    uint32_t id = 0;
    uint64_t size = 0; /* of the body */
    size_t head = 0;   /* bytes of identifier and size */
};

/* A number whose length is told by the leading zeros of its first byte. */
std::optional<uint64_t> read_number(ByteReader *reader, size_t longest, bool keep_marker)
{
    if (reader->left() == 0) return std::nullopt;
    const auto first = static_cast<uint8_t>(reader->number(1));
    const auto more = static_cast<size_t>(std::countl_zero(first));
    if (more >= longest || reader->left() < more) return std::nullopt;
    const uint64_t top = keep_marker ? first : first & ((1U << (7 - more)) - 1);
    const uint64_t value = top << (8 * more) | reader->number(more);
    const bool all_ones = !keep_marker && value == (uint64_t(1) << (7 * (more + 1))) - 1;
    return all_ones ? kUnknown : value;
}

std::optional<Element> read_head(ByteReader *reader)
{
    const size_t from = reader->at();
    const auto id = read_number(reader, 4, true);
    const auto size = read_number(reader, 8, false);
    if (!id || !size) return std::nullopt;
    return Element{static_cast<uint32_t>(*id), *size, reader->at() - from};
}

template <typename Each> void each_element(std::span<const uint8_t> bytes, Each each)
{
    ByteReader reader(bytes);
    while (reader.left() > 0) {
        const auto element = read_head(&reader);
        if (!element || element->size > reader.left()) return;
        each(element->id, reader.part(element->size));
    }
}

uint64_t number_in(std::span<const uint8_t> body)
{
    return ByteReader(body).number(std::min<size_t>(body.size(), 8));
}

double real_in(std::span<const uint8_t> body)
{
    if (body.size() == 4) return std::bit_cast<float>(static_cast<uint32_t>(number_in(body)));
    return body.size() == 8 ? std::bit_cast<double>(number_in(body)) : 0;
}

struct Movie {
    uint64_t scale_ns = 1'000'000;
    double duration = 0; /* in that scale; 0 = not known yet */
    uint64_t video = 0;  /* track */
    uint64_t frame_ns = 0;
    int64_t from_us = 0;
    std::string title;
};

void read_info(std::span<const uint8_t> body, Movie *movie)
{
    each_element(body, [&](uint32_t id, std::span<const uint8_t> value) {
        if (id == kTimestampScale && number_in(value) > 0) movie->scale_ns = number_in(value);
        if (id == kDuration) movie->duration = real_in(value);
        if (id == kTitle) movie->title = {value.begin(), value.end()};
        if (id == kDate && value.size() == 8)
            movie->from_us = kDatesBegin_us + static_cast<int64_t>(number_in(value)) / 1000;
    });
}

void read_tracks(std::span<const uint8_t> body, Movie *movie)
{
    each_element(body, [&](uint32_t id, std::span<const uint8_t> track) {
        if (id != kTrack || movie->video != 0) return;
        uint64_t number = 0, type = 0, frame_ns = 0;
        each_element(track, [&](uint32_t inner, std::span<const uint8_t> value) {
            if (inner == kTrackNumber) number = number_in(value);
            if (inner == kTrackType) type = number_in(value);
            if (inner == kDefaultDuration) frame_ns = number_in(value);
        });
        if (type == kVideo) movie->video = number, movie->frame_ns = frame_ns;
    });
}

/* When the cluster's last picture begins, in the file's scale; nothing = it has none. */
std::optional<int64_t> last_picture(std::span<const uint8_t> cluster, const Movie &movie)
{
    int64_t base = 0;
    std::optional<int64_t> last;
    auto look = [&](std::span<const uint8_t> block) {
        ByteReader reader(block);
        const auto track = read_number(&reader, 8, false);
        const auto offset = static_cast<int16_t>(reader.number(2));
        if (!track || *track != movie.video) return;
        last = std::max(last.value_or(INT64_MIN), base + offset);
    };
    each_element(cluster, [&](uint32_t id, std::span<const uint8_t> body) {
        if (id == kTimestamp) base = static_cast<int64_t>(number_in(body));
        if (id == kSimpleBlock) look(body);
        if (id != kBlockGroup) return;
        each_element(body, [&](uint32_t inner, std::span<const uint8_t> block) {
            if (inner == kBlock) look(block);
        });
    });
    return last;
}

} // namespace

bool is_mkv(const ReadFile &file)
{
    const std::vector<uint8_t> head = file.read(0, 4);
    return number_in(head) == kEbml;
}

FileExtent mkv_extent(const ReadFile &file)
{
    FileExtent extent;
    extent.bytes = file.size();
    extent.problem = "its head is missing or damaged";
    Movie movie;
    int64_t at = 0, last_at = 0;
    size_t last_size = 0;
    bool ended = false; /* the file is as long as it says */
    while (at < file.size()) {
        const std::vector<uint8_t> bytes = file.read(at, kLongestHead);
        ByteReader reader(bytes);
        const auto head = read_head(&reader);
        if (!head) break;
        const int64_t body_at = at + static_cast<int64_t>(head->head);
        if (head->id == kSegment) { /* all else is in it */
            ended = head->size == static_cast<uint64_t>(file.size() - body_at);
            extent.whole_bytes = at = body_at;
            continue;
        }
        if (head->size == kUnknown || head->size > static_cast<uint64_t>(file.size() - body_at)) break;
        const auto size = static_cast<int64_t>(head->size);
        if ((head->id == kInfo || head->id == kTracks) && size <= kLargestMkvHead_bytes) {
            const std::vector<uint8_t> body = file.read(body_at, head->size);
            head->id == kInfo ? read_info(body, &movie) : read_tracks(body, &movie);
            extent.readable = movie.video != 0;
        } else if (head->id == kCluster) {
            last_at = body_at;
            last_size = head->size;
            extent.in_fragments = true;
        }
        extent.whole_bytes = at = body_at + size;
    }
    if (extent.readable) extent.problem.clear();
    extent.from_us = movie.from_us;
    extent.title = movie.title.substr(0, movie.title.find('\0')); /* which may be filled up with zeros */
    const double scale_us = static_cast<double>(movie.scale_ns) / 1e3;
    if (movie.duration > 0 && ended) {
        extent.duration_us = static_cast<int64_t>(movie.duration * scale_us);
        return extent;
    }
    if (last_size == 0 || last_size > static_cast<size_t>(kLargestMkvHead_bytes)) return extent;
    if (const auto last = last_picture(file.read(last_at, last_size), movie))
        extent.duration_us = static_cast<int64_t>(static_cast<double>(*last) * scale_us +
                                                  static_cast<double>(movie.frame_ns) / 1e3);
    return extent;
}

} // namespace nvrec
