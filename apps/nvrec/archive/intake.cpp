/* intake.cpp - see intake.h. */
#include "archive/intake.h"

#include <algorithm>
#include <cctype>
#include <ctime>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "archive/file_extent.h"
#include "archive/time_of_day.h"

namespace nvrec
{
namespace
{

constexpr int64_t kNameSecond_us = 1'000'000;
constexpr size_t kFilesATransaction = 200;

/* Takes a name apart from its front. */
class NameReader
{
public:
    explicit NameReader(std::string_view text) : text_(text) {}

    bool take(std::string_view word)
    {
        if (!text_.starts_with(word)) return false;
        text_.remove_prefix(word.size());
        return true;
    }

    /** So many digits, or from `count` to `most` of them. -1 = they are not there. */
    int digits(size_t count, size_t most = 0)
    {
        size_t found = 0;
        int value = 0;
        while (found < std::max(count, most) && found < text_.size() &&
               std::isdigit(static_cast<unsigned char>(text_[found])))
            value = 10 * value + (text_[found++] - '0');
        if (found < count) return -1;
        text_.remove_prefix(found);
        return value;
    }

    std::string word()
    {
        size_t length = 0;
        while (length < text_.size() && std::isalpha(static_cast<unsigned char>(text_[length])))
            ++length;
        std::string taken(text_.substr(0, length));
        text_.remove_prefix(length);
        return taken;
    }

    std::string_view rest() const { return text_; }

private:
    std::string_view text_;
};

} // namespace

std::optional<RecordingName> recording_name(std::string_view file)
{
    NameReader name(file);
    RecordingName says;
    if (!name.take("ch")) return std::nullopt;
    says.channel = name.digits(2, 4);
    if (says.channel < 0 || !name.take("-")) return std::nullopt;
    says.stream = name.word();
    if (says.stream.empty() || !name.take("-")) return std::nullopt;
    tm parts = {};
    parts.tm_year = name.digits(4) - 1900;
    parts.tm_mon = name.digits(2) - 1;
    parts.tm_mday = name.digits(2);
    if (parts.tm_mon < 0 || parts.tm_mday < 1 || !name.take("-")) return std::nullopt;
    parts.tm_hour = name.digits(2);
    parts.tm_min = name.digits(2);
    parts.tm_sec = name.digits(2);
    if (parts.tm_hour < 0 || parts.tm_min < 0 || parts.tm_sec < 0) return std::nullopt;
    const bool east = name.rest().starts_with("+");
    NameReader with_offset = name;
    int hours = -1, minutes = -1;
    if (with_offset.take("+") || with_offset.take("-")) {
        hours = with_offset.digits(2);
        minutes = hours >= 0 ? with_offset.digits(2) : -1;
    }
    if (minutes >= 0) {
        name = with_offset;
        says.from_us = (timegm(&parts) - (east ? 60 : -60) * (60 * hours + minutes)) * kNameSecond_us;
    } else {
        /* When an hour occurs twice, names without an offset belong to the first one. */
        char clock[40];
        std::strftime(clock, sizeof clock, "%Y-%m-%dT%H:%M:%S", &parts);
        std::string problem;
        const auto first = read_time(clock, 0, &problem);
        parts.tm_isdst = -1;
        says.from_us = first ? *first : mktime(&parts) * kNameSecond_us;
    }
    if (name.take("-") && name.digits(1, 6) < 0) return std::nullopt;
    if (name.rest() != ".mp4" && name.rest() != ".mkv") return std::nullopt;
    return says;
}

std::vector<ListedFile> list_recordings(const std::string &directory)
{
    std::vector<ListedFile> files;
    DIR *listing = opendir(directory.c_str());
    if (!listing) return files;
    while (const dirent *entry = readdir(listing)) {
        const auto says = recording_name(entry->d_name);
        struct stat facts = {};
        if (!says || fstatat(dirfd(listing), entry->d_name, &facts, 0) != 0 || !S_ISREG(facts.st_mode))
            continue;
        files.push_back({entry->d_name, facts.st_size, *says});
    }
    closedir(listing);
    return files;
}

namespace
{

bool cut_file(const std::string &path, int64_t bytes)
{
    const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    const bool cut = file >= 0 && ::ftruncate(file, bytes) == 0 && ::fsync(file) == 0;
    if (file >= 0) ::close(file);
    return cut;
}

/* Cut a torn end off, and say so. A file with a single index for its whole length, as other programs write
 * it, cannot be cut anywhere. */
void cut_back(const std::string &path, FileExtent *extent, IntakeResult *result)
{
    if (!extent->torn() || !extent->in_fragments) return;
    if (!cut_file(path, extent->whole_bytes)) {
        result->lines.push_back(path + ": its end is torn, and cannot be cut off");
        return;
    }
    result->lines.push_back(path + ": its torn end was cut off, " +
                            std::to_string(extent->bytes - extent->whole_bytes) + " bytes");
    extent->bytes = extent->whole_bytes;
    ++result->cut;
}

/* Whether a file that begins at this time has this name in some time zone. If not, the file is a copy that
 * was renamed, and the time in its name counts. */
bool is_named_by(const RecordingName &says, int64_t from_us)
{
    constexpr int64_t kWidestZones_us = int64_t{26} * 3600 * kNameSecond_us;
    constexpr int64_t kZoneStep_us = int64_t{15} * 60 * kNameSecond_us;
    const int64_t later_us = from_us - says.from_us + kWidestZones_us;
    return later_us >= 0 && later_us <= 2 * kWidestZones_us && later_us % kZoneStep_us < kNameSecond_us;
}

bool is_camera_name(const std::string &text)
{
    constexpr size_t kLongestName = 255;
    return text.size() <= kLongestName && std::ranges::none_of(text, [](char letter) {
               return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F;
           });
}

/*
 * The head of a new file tells its time exactly, and the camera's name. A file name tells the time to the
 * second, and no camera's name.
 */
SegmentRow new_row(const std::string &path, const RecordingName &says, const FileExtent &extent)
{
    SegmentRow row;
    row.channel = says.channel;
    row.stream = says.stream;
    row.path = path;
    row.from_us = says.from_us;
    if (extent.from_us == 0 || !is_named_by(says, extent.from_us)) return row;
    row.from_us = extent.from_us;
    if (is_camera_name(extent.title)) row.camera = extent.title;
    return row;
}

} // namespace

IntakeResult take_in(Index &index, const std::vector<ListedFile> &files, const IntakeOptions &options)
{
    IntakeResult result;
    auto known = index.known_files();

    std::optional<Transaction> transaction;
    size_t in_transaction = 0;
    for (const ListedFile &file : files) {
        const auto found = known.find(file.name);
        const bool is_new = found == known.end();
        const Index::KnownFile as_known = is_new ? Index::KnownFile() : found->second;
        if (!is_new) known.erase(found);
        if (!is_new && as_known.bytes == file.bytes && (as_known.finished || !options.repair)) continue;
        SegmentRow row = is_new ? SegmentRow() : index.segment(file.name).value_or(SegmentRow());
        if (!transaction) transaction.emplace(index.database());
        const std::string path = index.directory() + "/" + file.name;
        FileExtent extent = extent_of(path);
        if (!extent.readable || extent.empty()) {
            result.lines.push_back(path + ": it cannot be played: " +
                                   (extent.readable ? "it holds no whole fragment" : extent.problem));
            if (!is_new) index.remove_segment(path);
            continue;
        }
        if (options.repair) cut_back(path, &extent, &result);
        if (is_new) row = new_row(path, file.says, extent);
        row.to_us = row.from_us + extent.duration_us;
        row.bytes = extent.bytes;
        row.finished = options.repair || (!extent.torn() && is_new);
        if (!index.put_segment(row)) result.lines.push_back(path + ": not in the index: " + index.error());
        ++(is_new ? result.added : result.updated);
        if (++in_transaction % kFilesATransaction == 0) {
            transaction->commit();
            transaction.reset();
        }
    }
    if (!known.empty() && !transaction) transaction.emplace(index.database());
    for (const auto &[name, unused] : known)
        result.removed += index.remove_segment(name);
    if (transaction) transaction->commit();
    return result;
}

} // namespace nvrec
