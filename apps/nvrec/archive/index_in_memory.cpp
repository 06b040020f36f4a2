/* index_in_memory.cpp - see index_in_memory.h. */
#include "archive/index_in_memory.h"

#include <cerrno>
#include <optional>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace nvrec
{
namespace
{

const IndexQuery kAllOfIt = {{}, "", {INT64_MIN, INT64_MAX}};

bool has_gone(const std::string &path)
{
    return ::access(path.c_str(), F_OK) != 0 && errno == ENOENT;
}

/* The index in memory knows how long a file is by now. Whose a file is and when it begins, the directory's
 * index knows as well or better. */
bool put(Index &file, const SegmentRow &row, const Index::KnownFile &known)
{
    if (known.bytes == row.bytes && known.finished == row.finished) return true;
    SegmentRow own = file.segment(row.path).value_or(row);
    own.to_us = own.from_us + (row.to_us - row.from_us);
    own.bytes = row.bytes;
    own.finished = row.finished;
    return file.put_segment(own);
}

bool write_into(Index &file, Index &memory)
{
    Transaction transaction(file.database());
    if (!transaction.is_open()) return false;
    auto known = file.known_files();
    for (const SegmentRow &row : memory.segments(kAllOfIt)) {
        const auto found = known.find(name_in_directory(row.path));
        const bool is_put = found == known.end() ? file.put_segment(row) : put(file, row, found->second);
        if (!is_put) return false;
        if (found != known.end()) known.erase(found);
    }
    for (const auto &[name, unused] : known) {
        if (has_gone(file.directory() + "/" + name) && !file.remove_segment(name)) return false;
    }
    for (const GapRow &gap : memory.gaps(kAllOfIt)) {
        if (!file.put_gap(gap)) return false;
    }
    for (const EventRow &event : memory.events(kAllOfIt)) {
        if (!file.put_event(event)) return false;
    }
    return transaction.commit();
}

/* Open it for this process alone: SQLite shares a database through a further file, which cannot be made on
 * a full disk. */
std::optional<std::vector<PinRow>> read_pins(const std::string &directory)
{
    const std::string path = directory + "/" + kIndexName;
    struct stat facts = {};
    const bool missing = ::stat(path.c_str(), &facts) != 0;
    if (missing && errno != ENOENT) return std::nullopt;
    std::vector<PinRow> pins;
    if (missing || (S_ISREG(facts.st_mode) && facts.st_size == 0)) return pins; /* nobody ever pinned */
    Database file;
    if (!file.open(path) || !file.run("PRAGMA locking_mode = EXCLUSIVE")) return std::nullopt;
    Statement find(file.handle(), "SELECT channel, from_us, to_us FROM pins JOIN cameras"
                                  " ON camera = cameras.id");
    while (find.next())
        pins.push_back({0, static_cast<int>(find.number(0)), "", {find.number(1), find.number(2)}});
    return find.done() ? std::optional(std::move(pins)) : std::nullopt;
}

} // namespace

bool bring_pins(Index *index)
{
    const auto pins = read_pins(index->directory());
    if (!pins || !index->database().run("DELETE FROM pins")) return false;
    for (const PinRow &pin : *pins) {
        for (const CameraRow &camera : index->cameras()) {
            if (camera.channel == pin.channel && index->put_pin(camera.id, pin.span) == 0) return false;
        }
    }
    return true;
}

std::string return_to_file(Index *index)
{
    Index file;
    std::string problem = file.open(index->directory(), OpenedBy::kRecorder);
    if (!problem.empty()) return problem;
    if (!write_into(file, *index)) return "the index cannot be written: " + file.error();
    index->swap(file);
    return {};
}

} // namespace nvrec
