/* record_files.cpp - see nvrec_record_files.h. */
#include "record_files.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string_view>

#include "nvrec_run.h"

namespace
{

std::vector<std::string> lines_of(const std::vector<std::string> &command)
{
    Process process(command);
    process.wait();
    std::vector<std::string> lines;
    std::istringstream text(process.output);
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

/* Boxes of ISO media files: 32-bit size, four letters; size 1 = a 64-bit size follows. */
struct Box {
    std::string_view kind, body;
};

uint64_t number_at(std::string_view bytes, size_t at, int count)
{
    uint64_t number = 0;
    for (int i = 0; i < count; ++i)
        number = number << 8 | static_cast<uint8_t>(bytes[at + static_cast<size_t>(i)]);
    return number;
}

/* The whole boxes at the start of `bytes`. */
std::vector<Box> boxes_in(std::string_view bytes)
{
    std::vector<Box> boxes;
    while (bytes.size() >= 8) {
        uint64_t size = number_at(bytes, 0, 4);
        size_t head = 8;
        if (size == 1 && bytes.size() >= 16) {
            size = number_at(bytes, 8, 8);
            head = 16;
        }
        if (size < head || size > bytes.size()) break;
        boxes.push_back({bytes.substr(4, 4), bytes.substr(head, size - head)});
        bytes.remove_prefix(size);
    }
    return boxes;
}

std::string_view body_of(const std::vector<Box> &boxes, std::string_view kind)
{
    const auto found =
        std::find_if(boxes.begin(), boxes.end(), [&](const Box &box) { return box.kind == kind; });
    return found == boxes.end() ? std::string_view() : found->body;
}

/* Samples of track 1 in a fragment's description. */
int pictures_in(std::string_view moof)
{
    int pictures = 0;
    for (const Box &track : boxes_in(moof)) {
        if (track.kind != "traf") continue;
        const std::vector<Box> parts = boxes_in(track.body);
        const std::string_view head = body_of(parts, "tfhd");
        if (head.size() < 8 || number_at(head, 4, 4) != 1) continue;
        for (const Box &part : parts) {
            if (part.kind == "trun" && part.body.size() >= 8)
                pictures += static_cast<int>(number_at(part.body, 4, 4));
        }
    }
    return pictures;
}

} // namespace

std::vector<std::string> picture_checksums(const std::string &path)
{
    std::vector<std::string> sums;
    for (const std::string &line : lines_of({"ffmpeg", "-nostdin", "-v", "error", "-i", path, "-map", "0:v",
                                             "-fps_mode", "passthrough", "-f", "framemd5", "-"})) {
        if (!line.empty() && line[0] != '#') sums.push_back(line.substr(line.rfind(' ') + 1));
    }
    return sums;
}

std::vector<double> picture_times(const std::string &path)
{
    std::vector<double> times;
    for (const std::string &line : lines_of({"ffprobe", "-v", "error", "-select_streams", "v:0",
                                             "-show_entries", "frame=pts_time", "-of", "csv=p=0", path})) {
        if (!line.empty()) times.push_back(std::strtod(line.c_str(), nullptr));
    }
    return times;
}

std::string probe(const std::string &path, const std::string &stream, const std::string &entry)
{
    const std::vector<std::string> lines =
        lines_of({"ffprobe", "-v", "error", "-select_streams", stream, "-count_packets", "-show_entries",
                  "stream=" + entry, "-of", "csv=p=0", path});
    return lines.empty() ? "" : lines.front();
}

bool begins_with_key_frame(const std::string &path)
{
    const std::vector<std::string> lines =
        lines_of({"ffprobe", "-v", "error", "-select_streams", "v:0", "-read_intervals", "%+#1",
                  "-show_entries", "packet=flags", "-of", "csv=p=0", path});
    return !lines.empty() && lines.front().starts_with("K");
}

std::vector<std::string> files_of(const std::string &directory, const std::string &prefix)
{
    std::vector<std::string> files;
    if (!std::filesystem::exists(directory)) return files;
    for (const auto &entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().filename().string().starts_with(prefix)) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end(), [](const std::string &a, const std::string &b) {
        /* "-2.mp4" stands behind ".mp4" of the same second. */
        return a.substr(0, a.rfind('.')) < b.substr(0, b.rfind('.'));
    });
    return files;
}

Fragments fragments_of(const std::string &path)
{
    const std::string bytes = file_text(path);
    Fragments fragments;
    std::string_view description;
    for (const Box &box : boxes_in(bytes)) {
        if (box.kind == "moof") description = box.body;
        if (box.kind != "mdat") continue;
        ++fragments.whole;
        fragments.pictures += pictures_in(description);
    }
    return fragments;
}

double recorded(const std::string &json, int channel, const std::string &stream, const std::string &name)
{
    size_t at = json.find("\"channel\": " + std::to_string(channel) + ", \"stream\": \"" + stream + "\"");
    if (at == std::string::npos) return -1;
    const size_t end = json.find('\n', at);
    at = json.find("\"" + name + "\": ", at);
    if (at == std::string::npos || at > end) return -1;
    return std::strtod(json.c_str() + at + name.size() + 4, nullptr);
}
