/* index.cpp - see index.h: opening, making and saving the database, and what is changed in it. */
#include "archive/index.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <tuple>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nvrec
{
namespace
{

constexpr int64_t kVersion = 1;
constexpr mode_t kIndexMode = 0640;

/* Commits are not synced one by one. After a power failure the last ones may be missing, and are made
 * again from the files; the database itself is whole. */
constexpr const char *kSettings = "PRAGMA journal_mode = WAL;"
                                  "PRAGMA synchronous = NORMAL;"
                                  "PRAGMA foreign_keys = ON;";

constexpr const char *kTables =
    "CREATE TABLE cameras (id INTEGER PRIMARY KEY, channel INTEGER NOT NULL, name TEXT NOT NULL,"
    "  UNIQUE (channel, name));"
    "CREATE TABLE segments (id INTEGER PRIMARY KEY, camera INTEGER NOT NULL REFERENCES cameras,"
    "  stream TEXT NOT NULL, file TEXT NOT NULL UNIQUE, from_us INTEGER NOT NULL, to_us INTEGER NOT NULL,"
    "  bytes INTEGER NOT NULL, finished INTEGER NOT NULL);"
    "CREATE INDEX segments_by_camera ON segments (camera, stream, from_us);"
    "CREATE INDEX segments_by_time ON segments (from_us);"
    "CREATE TABLE gaps (camera INTEGER NOT NULL REFERENCES cameras, stream TEXT NOT NULL,"
    "  from_us INTEGER NOT NULL, to_us INTEGER NOT NULL, why TEXT NOT NULL,"
    "  UNIQUE (camera, stream, from_us, to_us));"
    "CREATE TABLE events (camera INTEGER NOT NULL REFERENCES cameras, at_us INTEGER NOT NULL,"
    "  kind TEXT NOT NULL, text TEXT NOT NULL);"
    "CREATE INDEX events_by_time ON events (at_us);"
    "CREATE TABLE pins (id INTEGER PRIMARY KEY, camera INTEGER NOT NULL REFERENCES cameras,"
    "  from_us INTEGER NOT NULL, to_us INTEGER NOT NULL);"
    "PRAGMA user_version = 1;";

/* An empty file is an empty database, and SQLite gives the files that it makes beside it the same mode and
 * owner. So when root is the first to look into a directory, the index is made with the directory's owner,
 * and the recorder can open it. */
std::string make_file(const std::string &path, const std::string &directory)
{
    int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kIndexMode);
    struct stat owner = {};
    if (file >= 0 && ::geteuid() == 0 && ::stat(directory.c_str(), &owner) == 0)
        std::ignore = ::fchown(file, owner.st_uid, owner.st_gid);
    if (file < 0 && errno == EEXIST) file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kIndexMode);
    if (file < 0) return std::strerror(errno);
    ::fchmod(file, kIndexMode);
    ::close(file);
    return {};
}

/* Events and pins exist only in the index: save those that can still be read from a damaged one. */
struct Irreplaceable {
    std::vector<EventRow> events;
    std::vector<PinRow> pins;
};

} // namespace

std::string name_in_directory(const std::string &path)
{
    return path.substr(path.find_last_of('/') + 1);
}

std::string CameraRow::shown() const
{
    return name.empty() ? "channel " + std::to_string(channel) : name;
}

std::string Index::open(const std::string &directory, OpenedBy user)
{
    directory_ = directory.empty() ? "." : directory;
    made_anew_ = in_memory_ = false;
    note_.clear();
    const std::string path = path_of(kIndexName);
    std::string problem = make_file(path, directory_);
    if (!problem.empty()) return path + ": " + problem;

    if (!database_.open(path)) return path + ": " + database_.error();
    Irreplaceable saved;
    switch (look()) {
    case Content::kWhole: return {};
    case Content::kNotKnown: return path + ": " + database_.error();
    case Content::kNothing: break;
    case Content::kUnusable:
        if (user == OpenedBy::kReader && is_recorded_into(directory_))
            return path + ": it is damaged or of another version, and a recorder is at work there";
        saved = {events({{}, ""}), pins()};
        database_.close();
        if (!set_aside(path)) return path + ": it is damaged, and cannot be renamed: " + std::strerror(errno);
        problem = make_file(path, directory_);
        if (!problem.empty()) return path + ": " + problem;
        if (!database_.open(path) || !database_.run(kSettings)) return path + ": " + database_.error();
    }
    if (!make_tables()) return path + ": " + database_.error();
    for (const EventRow &event : saved.events)
        put_event(event);
    for (const PinRow &pin : saved.pins)
        put_pin(camera_number(pin.channel, pin.camera), pin.span);
    made_anew_ = true;
    return {};
}

/* When a query failed because the disk did not answer or another process held the database, nothing is
 * known of what is in it. */
Index::Content Index::look()
{
    constexpr int64_t kFailed = INT64_MIN;
    const auto ask = [this](const char *sql) { return database_.number(sql, kFailed); };
    const auto not_answered = [this] {
        return database_.damaged() ? Content::kUnusable : Content::kNotKnown;
    };
    if (!database_.run(kSettings)) return not_answered();
    const int64_t version = ask("PRAGMA user_version");
    if (version == kFailed) return not_answered();
    const int64_t tables = ask("SELECT count(*) FROM sqlite_master");
    if (tables == kFailed) return not_answered();
    if (version == 0 && tables == 0) return Content::kNothing;
    if (version != kVersion) return Content::kUnusable;
    const int64_t own = ask("SELECT count(*) FROM sqlite_master WHERE name IN ('segments', 'pins')");
    if (own == kFailed) return not_answered();
    if (own < 2) return Content::kUnusable;
    for (const char *sql : {"SELECT count(*) FROM segments", "SELECT count(*) FROM pins"}) {
        if (ask(sql) == kFailed) return not_answered();
    }
    return Content::kWhole;
}

std::string Index::open_in_memory(const std::string &directory)
{
    directory_ = directory.empty() ? "." : directory;
    made_anew_ = in_memory_ = true;
    if (database_.open("") && make_tables()) return {};
    return "no index in memory: " + database_.error();
}

void Index::swap(Index &other)
{
    database_.swap(other.database_);
    directory_.swap(other.directory_);
    note_.swap(other.note_);
    std::swap(made_anew_, other.made_anew_);
    std::swap(in_memory_, other.in_memory_);
}

bool Index::make_tables()
{
    Transaction transaction(database_);
    return transaction.is_open() && database_.run(kTables) && transaction.commit();
}

bool Index::set_aside(const std::string &path)
{
    const std::string aside = path + ".damaged";
    if (std::rename(path.c_str(), aside.c_str()) != 0) return false;
    for (const char *ending : {"-wal", "-shm"})
        std::remove((path + ending).c_str());
    note_ = "the index could not be read and is made anew from the files; it is kept as " + aside;
    return true;
}

int64_t Index::camera_number(int channel, const std::string &name)
{
    Statement find(database_.handle(), "SELECT id FROM cameras WHERE channel = ? AND name = ?");
    find.bind(0, channel).bind(1, name);
    if (find.next()) return find.number(0);
    /* Recordings that the channel made before its camera had a name belong to this camera. */
    Statement name_it(database_.handle(), "UPDATE cameras SET name = ? WHERE channel = ? AND name = ''");
    if (!name.empty() && name_it.bind(0, name).bind(1, channel).run() && database_.changed() > 0)
        return camera_number(channel, name);
    Statement named(database_.handle(), "SELECT id FROM cameras WHERE channel = ? ORDER BY id DESC");
    if (name.empty() && named.bind(0, channel).next()) return named.number(0);
    Statement put(database_.handle(), "INSERT INTO cameras (channel, name) VALUES (?, ?)");
    return put.bind(0, channel).bind(1, name).run() ? database_.last_row() : 0;
}

bool Index::put_segment(const SegmentRow &row)
{
    const int64_t camera = camera_number(row.channel, row.camera);
    if (camera == 0) return false;
    Statement put(database_.handle(),
                  "INSERT INTO segments (camera, stream, file, from_us, to_us, bytes, finished)"
                  " VALUES (?, ?, ?, ?, ?, ?, ?) ON CONFLICT (file) DO UPDATE SET camera = excluded.camera,"
                  " stream = excluded.stream, from_us = excluded.from_us, to_us = excluded.to_us,"
                  " bytes = excluded.bytes, finished = excluded.finished");
    return put.bind(0, camera)
        .bind(1, row.stream)
        .bind(2, name_in_directory(row.path))
        .bind(3, row.from_us)
        .bind(4, std::max(row.from_us, row.to_us))
        .bind(5, row.bytes)
        .bind(6, row.finished)
        .run();
}

bool Index::grow_segment(const std::string &path, int64_t to_us, int64_t bytes, bool finished)
{
    /* A finished file may be shorter than before, because what could not be synced was cut off. */
    Statement grow(database_.handle(),
                   finished
                       ? "UPDATE segments SET to_us = max(from_us, ?), bytes = ?, finished = ? WHERE file = ?"
                       : "UPDATE segments SET to_us = max(to_us, ?), bytes = ?, finished = ? WHERE file = ?");
    return grow.bind(0, to_us).bind(1, bytes).bind(2, finished).bind(3, name_in_directory(path)).run();
}

bool Index::remove_segment(const std::string &path)
{
    Statement remove(database_.handle(), "DELETE FROM segments WHERE file = ?");
    return remove.bind(0, name_in_directory(path)).run();
}

bool Index::put_gap(const GapRow &row)
{
    const int64_t camera = camera_number(row.channel, row.camera);
    if (camera == 0) return false;
    /* A gap inside a file ends in that file, and is not made longer. */
    Statement prolong(database_.handle(),
                      "UPDATE OR REPLACE gaps SET to_us = ?4 WHERE camera = ?1 AND stream = ?2 AND why = ?5"
                      " AND from_us <= ?3 AND to_us IN (?3, ?4) AND NOT EXISTS (SELECT 1 FROM segments WHERE"
                      " segments.camera = ?1 AND segments.stream = ?2 AND segments.from_us <= gaps.from_us"
                      " AND segments.to_us >= gaps.to_us)");
    prolong.bind(0, camera).bind(1, row.stream).bind(2, row.from_us).bind(3, row.to_us).bind(4, row.why);
    if (!prolong.run()) return false;
    if (database_.changed() > 0) return true;
    Statement put(database_.handle(), "INSERT OR REPLACE INTO gaps (camera, stream, from_us, to_us, why)"
                                      " VALUES (?, ?, ?, ?, ?)");
    return put.bind(0, camera)
        .bind(1, row.stream)
        .bind(2, row.from_us)
        .bind(3, row.to_us)
        .bind(4, row.why)
        .run();
}

bool Index::put_event(const EventRow &row)
{
    const int64_t camera = camera_number(row.channel, row.camera);
    if (camera == 0) return false;
    Statement put(database_.handle(), "INSERT INTO events (camera, at_us, kind, text) VALUES (?, ?, ?, ?)");
    return put.bind(0, camera).bind(1, row.at_us).bind(2, row.kind).bind(3, row.text).run();
}

/* Few recordings from before that time are left, so they are searched by time. */
bool Index::forget_before(int64_t at_us)
{
    Statement events(database_.handle(),
                     "DELETE FROM events WHERE at_us < ? AND NOT EXISTS (SELECT 1 FROM segments INDEXED BY"
                     " segments_by_time WHERE from_us <= at_us AND to_us > at_us AND"
                     " segments.camera = events.camera) AND NOT EXISTS (SELECT 1 FROM pins WHERE"
                     " from_us <= at_us AND to_us > at_us AND pins.camera = events.camera)");
    Statement gaps(database_.handle(),
                   "DELETE FROM gaps WHERE to_us <= ? AND NOT EXISTS (SELECT 1 FROM segments INDEXED BY"
                   " segments_by_time WHERE segments.from_us < gaps.to_us AND segments.to_us > gaps.from_us"
                   " AND segments.camera = gaps.camera) AND NOT EXISTS (SELECT 1 FROM pins WHERE"
                   " pins.from_us < gaps.to_us AND pins.to_us > gaps.from_us AND pins.camera = gaps.camera)");
    return events.bind(0, at_us).run() && gaps.bind(0, at_us).run();
}

int64_t Index::put_pin(int64_t camera, const TimeSpan &span)
{
    Statement put(database_.handle(), "INSERT INTO pins (camera, from_us, to_us) VALUES (?, ?, ?)");
    return put.bind(0, camera).bind(1, span.from_us).bind(2, span.to_us).run() ? database_.last_row() : 0;
}

int Index::remove_pins(int64_t camera, const TimeSpan &span)
{
    Transaction transaction(database_);
    std::vector<PinRow> touched;
    Statement find(database_.handle(), "SELECT id, from_us, to_us FROM pins"
                                       " WHERE camera = ? AND from_us < ? AND to_us > ?");
    find.bind(0, camera).bind(1, span.to_us).bind(2, span.from_us);
    while (find.next())
        touched.push_back({find.number(0), -1, {}, {find.number(1), find.number(2)}});
    for (const PinRow &pin : touched) {
        Statement remove(database_.handle(), "DELETE FROM pins WHERE id = ?");
        if (!remove.bind(0, pin.id).run()) return 0;
        if (pin.span.from_us < span.from_us) put_pin(camera, {pin.span.from_us, span.from_us});
        if (pin.span.to_us > span.to_us) put_pin(camera, {span.to_us, pin.span.to_us});
    }
    return transaction.commit() ? static_cast<int>(touched.size()) : 0;
}

} // namespace nvrec
