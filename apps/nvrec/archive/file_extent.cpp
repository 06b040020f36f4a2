/* file_extent.cpp - see file_extent.h: MP4, and which kind a file is. */
#include "archive/file_extent.h"

#include <algorithm>

#include "archive/file_bytes.h"
#include "archive/file_extent_mkv.h"
#include "archive/time_of_day.h"

namespace nvrec
{
namespace
{

/* Largest head of a file or fragment; a file that claims more is damaged. */
constexpr int64_t kLargestHead_bytes = 64 << 20;
constexpr double kTicksToMicroseconds = 1e6;

struct VideoTrack {
    uint32_t number = 0;
    uint32_t ticks = 0; /* a second */
    uint64_t duration = 0;
    uint32_t default_duration = 0;
};

/* The boxes in a box, each once: its name and what is in it. */
template <typename Each> void each_box(std::span<const uint8_t> bytes, Each each)
{
    ByteReader reader(bytes);
    while (reader.left() >= 8) {
        uint64_t size = reader.number(4);
        const auto name = static_cast<uint32_t>(reader.number(4));
        uint64_t head = 8;
        if (size == 1) {
            size = reader.number(8);
            head = 16;
        }
        if (size == 0) size = head + reader.left();
        if (size < head) return;
        each(name, reader.part(size - head));
    }
}

/* A head box's version chooses how wide its times are. */
void read_media_head(std::span<const uint8_t> box, VideoTrack *track)
{
    ByteReader reader(box);
    const bool wide = reader.number(1) == 1;
    reader.skip(3 + (wide ? 16 : 8));
    track->ticks = static_cast<uint32_t>(reader.number(4));
    track->duration = reader.number(wide ? 8 : 4);
}

void read_track(std::span<const uint8_t> trak, VideoTrack *found)
{
    VideoTrack track;
    bool video = false;
    each_box(trak, [&](uint32_t name, std::span<const uint8_t> box) {
        if (name == box_name("tkhd")) {
            ByteReader reader(box);
            const bool wide = reader.number(1) == 1;
            reader.skip(3 + (wide ? 16 : 8));
            track.number = static_cast<uint32_t>(reader.number(4));
        }
        if (name != box_name("mdia")) return;
        each_box(box, [&](uint32_t inner, std::span<const uint8_t> media) {
            if (inner == box_name("mdhd")) read_media_head(media, &track);
            if (inner == box_name("hdlr")) {
                ByteReader reader(media);
                reader.skip(8);
                video |= reader.number(4) == box_name("vide");
            }
        });
    });
    if (video && found->number == 0) *found = track;
}

/* A text of the head. MP4 puts it into a box of its own, QuickTime puts its length and language in front. */
std::string text_in(std::span<const uint8_t> box)
{
    constexpr size_t kTextHead = 16; /* of MP4: size, name, type, country */
    ByteReader reader(box);
    const uint64_t length = reader.number(2);
    reader.skip(2);
    const bool quicktime = box.size() >= 8 && reader.number(4) != box_name("data");
    const auto text = quicktime ? box.subspan(4, std::min<uint64_t>(length, box.size() - 4))
                                : box.subspan(std::min(kTextHead, box.size()));
    return {text.begin(), text.end()};
}

void read_label(std::span<const uint8_t> user_data, FileExtent *extent)
{
    each_box(user_data, [&](uint32_t name, std::span<const uint8_t> box) {
        std::string ignored;
        if (name == box_name("meta") && box.size() > 4) read_label(box.subspan(4), extent);
        if (name == box_name("ilst")) read_label(box, extent);
        if (name == box_name("\xA9nam")) extent->title = text_in(box);
        if (name == box_name("\xA9"
                             "day"))
            extent->from_us = read_time(text_in(box), 0, &ignored).value_or(0);
    });
}

VideoTrack read_movie(std::span<const uint8_t> moov)
{
    VideoTrack track;
    each_box(moov, [&](uint32_t name, std::span<const uint8_t> box) {
        if (name == box_name("trak")) read_track(box, &track);
    });
    each_box(moov, [&](uint32_t name, std::span<const uint8_t> box) {
        if (name != box_name("mvex")) return;
        each_box(box, [&](uint32_t inner, std::span<const uint8_t> extends) {
            ByteReader reader(extends);
            reader.skip(4);
            if (inner != box_name("trex") || reader.number(4) != track.number) return;
            reader.skip(4);
            track.default_duration = static_cast<uint32_t>(reader.number(4));
        });
    });
    return track;
}

/* Where the samples of a run end, in ticks after its start. */
uint64_t run_duration(std::span<const uint8_t> trun, uint32_t default_duration)
{
    ByteReader reader(trun);
    const auto flags = static_cast<uint32_t>(reader.number(4)) & 0xFFFFFF;
    const uint64_t samples = reader.number(4);
    if (flags & 0x001) reader.skip(4);
    if (flags & 0x004) reader.skip(4);
    if (!(flags & 0x100)) return samples * default_duration;
    const size_t others = ((flags & 0x200) ? 4 : 0) + ((flags & 0x400) ? 4 : 0) + ((flags & 0x800) ? 4 : 0);
    uint64_t sum = 0;
    for (uint64_t i = 0; i < samples && reader.left() > 0; ++i) {
        sum += reader.number(4);
        reader.skip(others);
    }
    return sum;
}

/* The end of the fragment's pictures in ticks; 0 = it has none. */
uint64_t fragment_end(std::span<const uint8_t> moof, const VideoTrack &track)
{
    uint64_t end = 0;
    each_box(moof, [&](uint32_t name, std::span<const uint8_t> traf) {
        if (name != box_name("traf")) return;
        uint32_t number = 0, default_duration = track.default_duration;
        uint64_t at = 0;
        each_box(traf, [&](uint32_t inner, std::span<const uint8_t> box) {
            ByteReader reader(box);
            if (inner == box_name("tfhd")) {
                const auto flags = static_cast<uint32_t>(reader.number(4)) & 0xFFFFFF;
                number = static_cast<uint32_t>(reader.number(4));
                reader.skip(((flags & 0x1) ? 8 : 0) + ((flags & 0x2) ? 4 : 0));
                if (flags & 0x8) default_duration = static_cast<uint32_t>(reader.number(4));
            } else if (inner == box_name("tfdt")) {
                const bool wide = reader.number(1) == 1;
                reader.skip(3);
                at = reader.number(wide ? 8 : 4);
            } else if (inner == box_name("trun")) {
                at += run_duration(box, default_duration);
                if (number == track.number) end = std::max(end, at);
            }
        });
    });
    return end;
}

FileExtent mp4_extent(const ReadFile &file)
{
    FileExtent extent;
    extent.bytes = file.size();
    VideoTrack track;
    uint64_t end_ticks = 0, open_end = 0;
    bool media = false; /* the last fragment's head waits for its pictures */
    int64_t at = 0;
    while (at < file.size()) {
        const std::vector<uint8_t> head = file.read(at, 16);
        ByteReader reader(head);
        auto size = static_cast<int64_t>(reader.number(4));
        const auto name = static_cast<uint32_t>(reader.number(4));
        if (size == 1 && head.size() == 16) size = static_cast<int64_t>(reader.number(8));
        if (size == 0) size = file.size() - at; /* up to the end */
        if (head.size() < 8 || size < 8 || size > file.size() - at) break;
        const bool whole_head =
            (name == box_name("moov") || name == box_name("moof")) && size <= kLargestHead_bytes;
        const std::vector<uint8_t> box = whole_head ? file.read(at, static_cast<size_t>(size)) : head;
        const std::span<const uint8_t> inside = std::span(box).subspan(std::min<size_t>(8, box.size()));
        at += size;
        if (name == box_name("moov") && whole_head) {
            track = read_movie(inside);
            each_box(inside, [&](uint32_t inner, std::span<const uint8_t> user_data) {
                if (inner == box_name("udta")) read_label(user_data, &extent);
            });
            extent.readable = track.number != 0 && track.ticks != 0;
            end_ticks = track.duration;
        } else if (name == box_name("moof") && whole_head) {
            open_end = fragment_end(inside, track);
            media = true;
            continue; /* whole with its pictures */
        } else if (name == box_name("mdat") && media) {
            end_ticks = std::max(end_ticks, open_end);
            media = false;
            extent.in_fragments = true;
        }
        extent.whole_bytes = at;
    }
    if (!extent.readable) extent.problem = "its head is missing or damaged";
    if (track.ticks != 0)
        extent.duration_us =
            static_cast<int64_t>(static_cast<double>(end_ticks) * kTicksToMicroseconds / track.ticks);
    return extent;
}

} // namespace

FileExtent extent_of(const std::string &path)
{
    const ReadFile file(path);
    FileExtent nothing;
    nothing.bytes = file.size();
    nothing.problem = file.is_open() ? "it is empty" : "it cannot be opened";
    if (!file.is_open() || file.size() == 0) return nothing;
    return is_mkv(file) ? mkv_extent(file) : mp4_extent(file);
}

} // namespace nvrec
