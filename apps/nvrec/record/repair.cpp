/* repair.cpp - see repair.h. */
#include "record/repair.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nvrec
{
namespace
{

/* A file as this looks at it. */
class Bytes
{
public:
    explicit Bytes(const std::string &path) : descriptor_(open(path.c_str(), O_RDWR | O_CLOEXEC))
    {
        struct stat facts = {};
        if (descriptor_ >= 0 && fstat(descriptor_, &facts) == 0) size_ = facts.st_size;
    }
    ~Bytes()
    {
        if (descriptor_ >= 0) close(descriptor_);
    }
    Bytes(const Bytes &) = delete;
    Bytes &operator=(const Bytes &) = delete;

    bool is_open() const { return descriptor_ >= 0; }
    int64_t size() const { return size_; }
    bool cut(int64_t size) { return ftruncate(descriptor_, size) == 0 && fsync(descriptor_) == 0; }

    /* False when they are not all there. */
    bool read(int64_t at, uint8_t *bytes, size_t count) const
    {
        return at >= 0 && pread(descriptor_, bytes, count, at) == static_cast<ssize_t>(count);
    }

    /* Most significant first. */
    std::optional<uint64_t> number(int64_t at, size_t count) const
    {
        std::array<uint8_t, 8> bytes;
        if (!read(at, bytes.data(), count)) return std::nullopt;
        uint64_t value = 0;
        for (size_t i = 0; i < count; ++i)
            value = value << 8 | bytes[i];
        return value;
    }

private:
    int descriptor_;
    int64_t size_ = 0;
};

/* How far a file is whole; nothing = it is not to be touched. */
struct Whole {
    int64_t size;
    bool playable;
};

/* ---------------------------------------------------------------------------------------- MP4 --- */

constexpr uint32_t letters(const char (&text)[5])
{
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<uint8_t>(text[i]);
    return value;
}

constexpr uint32_t kFileType = letters("ftyp"), kMovie = letters("moov"), kFragment = letters("moof"),
                   kMedia = letters("mdat"), kFragmentIndex = letters("mfra"), kIndexEnd = letters("mfro");
constexpr uint32_t kBoxes[] = {kFileType,       kMovie,          kFragment,       kMedia,
                               kFragmentIndex,  letters("free"), letters("skip"), letters("styp"),
                               letters("sidx"), letters("udta"), letters("uuid"), letters("wide")};
constexpr int64_t kIndexEnd_bytes = 16;

bool ends_with_index(const Bytes &file)
{
    const int64_t at = file.size() - kIndexEnd_bytes;
    if (file.number(at + 4, 4) != kIndexEnd) return false;
    const auto index_bytes = file.number(at + 12, 4);
    return index_bytes &&
           file.number(file.size() - static_cast<int64_t>(*index_bytes) + 4, 4) == kFragmentIndex;
}

std::optional<Whole> whole_mp4(const Bytes &file)
{
    if (ends_with_index(file)) return std::nullopt;
    Whole whole = {0, false};
    bool movie = false, fragment = false;
    int64_t at = 0;
    for (;;) {
        const auto size32 = file.number(at, 4), kind = file.number(at + 4, 4);
        if (!size32 || !kind || std::ranges::find(kBoxes, *kind) == std::end(kBoxes)) break;
        const uint64_t size = *size32 == 1 ? file.number(at + 8, 8).value_or(0) : *size32;
        if (size < 8 || size > static_cast<uint64_t>(file.size() - at)) break;
        at += static_cast<int64_t>(size);
        if (*kind == kMedia && !fragment) return std::nullopt; /* of another kind: one index for all */
        movie = movie || *kind == kMovie;
        if (*kind == kMedia && movie) whole = {at, true};
        fragment = *kind == kFragment;
    }
    if (at == file.size() && whole.playable && !fragment) return std::nullopt; /* only the index is missing */
    return whole;
}

/* ---------------------------------------------------------------------------------------- MKV --- */

constexpr uint64_t kEbmlHead = 0x1A45DFA3, kSegment = 0x18538067, kCluster = 0x1F43B675;

struct Element {
    uint64_t id = 0;
    int64_t body = 0;
    std::optional<int64_t> size; /* nothing = open to the end */
};

/* A number whose first bits tell its length; its marker stays in an identifier. */
std::optional<uint64_t> variable(const Bytes &file, int64_t at, bool keep_marker, size_t *length)
{
    const auto first = file.number(at, 1);
    if (!first || *first == 0) return std::nullopt;
    *length = static_cast<size_t>(__builtin_clz(static_cast<unsigned>(*first)) - 23);
    const auto value = file.number(at, *length);
    if (!value || keep_marker) return value;
    return *value & ((uint64_t{1} << (7 * *length)) - 1);
}

std::optional<Element> element_at(const Bytes &file, int64_t at)
{
    size_t id_length = 0, size_length = 0;
    const auto id = variable(file, at, true, &id_length);
    if (!id) return std::nullopt;
    const auto size = variable(file, at + static_cast<int64_t>(id_length), false, &size_length);
    if (!size) return std::nullopt;
    Element element = {*id, at + static_cast<int64_t>(id_length + size_length), std::nullopt};
    if (*size != (uint64_t{1} << (7 * size_length)) - 1) element.size = static_cast<int64_t>(*size);
    return element;
}

std::optional<Whole> whole_mkv(const Bytes &file)
{
    const auto head = element_at(file, 0);
    if (!head || head->id != kEbmlHead || !head->size) return Whole{0, false};
    const auto segment = element_at(file, head->body + *head->size);
    if (!segment || segment->id != kSegment) return Whole{0, false};
    /* An end that is not there although the head tells of it: the disk wrote them in another order. */
    if (segment->size && segment->body + *segment->size <= file.size()) return std::nullopt;
    Whole whole = {segment->body, false};
    for (int64_t at = segment->body; at < file.size();) {
        const auto element = element_at(file, at);
        if (!element) break;
        if (!element->size) return std::nullopt; /* of another kind: written as a stream */
        if (*element->size > file.size() - element->body) break;
        at = element->body + *element->size;
        if (element->id == kCluster) whole.playable = true;
        if (whole.playable || element->id != kCluster) whole.size = at;
    }
    return whole;
}

bool is_recording(std::string_view name)
{
    return name.size() > 5 && name.starts_with("ch") && std::isdigit(static_cast<unsigned char>(name[2])) &&
           (name.ends_with(".mp4") || name.ends_with(".mkv"));
}

} // namespace

RepairResult repair_end(const std::string &path)
{
    RepairResult result;
    Bytes file(path);
    if (!file.is_open()) {
        result.problem = std::strerror(errno);
        return result;
    }
    const auto whole = path.ends_with(".mkv") ? whole_mkv(file) : whole_mp4(file);
    if (!whole || (whole->playable && whole->size == file.size())) return result;
    result.cut_bytes = file.size() - whole->size;
    result.removed = !whole->playable;
    const bool done = result.removed ? unlink(path.c_str()) == 0 : file.cut(whole->size);
    if (!done) result.problem = std::strerror(errno);
    return result;
}

std::vector<std::string> newest_recordings(const std::string &directory)
{
    constexpr size_t kPrefixParts = 2; /* "ch03-main" */
    constexpr size_t kOfEach = 2;
    std::map<std::string, std::vector<std::string>> by_stream;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(directory, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (!is_recording(name)) continue;
        size_t at = 0;
        for (size_t part = 0; part < kPrefixParts && at != std::string::npos; ++part)
            at = name.find('-', at == 0 ? 0 : at + 1);
        if (at != std::string::npos) by_stream[name.substr(0, at)].push_back(entry->path());
    }
    std::vector<std::string> newest;
    for (auto &[stream, paths] : by_stream) {
        std::ranges::sort(paths);
        const size_t first = paths.size() > kOfEach ? paths.size() - kOfEach : 0;
        newest.insert(newest.end(), paths.begin() + static_cast<ptrdiff_t>(first), paths.end());
    }
    return newest;
}

} // namespace nvrec
