/* index_queries.cpp - see index.h: the queries. */
#include <algorithm>

#include "archive/index.h"

namespace nvrec
{
namespace
{

constexpr const char *kSegmentColumns = "SELECT cameras.channel, cameras.name, stream, file, from_us, to_us,"
                                        " bytes, finished FROM segments JOIN cameras ON camera = cameras.id";

constexpr const char *kMayGo = "finished = 1 AND NOT EXISTS (SELECT 1 FROM pins WHERE"
                               " pins.camera = segments.camera AND pins.from_us < segments.to_us AND"
                               " pins.to_us > segments.from_us)";

/* " AND camera IN (1, 2)": numbers of the database itself. */
std::string of_cameras(const IndexQuery &query)
{
    if (query.cameras.empty()) return {};
    std::string list;
    for (const int64_t camera : query.cameras)
        list += (list.empty() ? "" : ", ") + std::to_string(camera);
    return " AND camera IN (" + list + ")";
}

} // namespace

bool is_within(const GapRow &gap, const SegmentRow &segment)
{
    return gap.channel == segment.channel && gap.camera == segment.camera && gap.stream == segment.stream &&
           gap.from_us >= segment.from_us && gap.to_us <= segment.to_us;
}

std::vector<CameraRow> Index::cameras()
{
    std::vector<CameraRow> rows;
    Statement find(database_.handle(), "SELECT id, channel, name FROM cameras ORDER BY channel, id");
    while (find.next())
        rows.push_back({find.number(0), static_cast<int>(find.number(1)), find.text(2)});
    return rows;
}

SegmentRow Index::segment_of(const Statement &row) const
{
    SegmentRow segment;
    segment.channel = static_cast<int>(row.number(0));
    segment.camera = row.text(1);
    segment.stream = row.text(2);
    segment.path = path_of(row.text(3));
    segment.from_us = row.number(4);
    segment.to_us = row.number(5);
    segment.bytes = row.number(6);
    segment.finished = row.number(7) != 0;
    return segment;
}

std::unordered_map<std::string, Index::KnownFile> Index::known_files()
{
    std::unordered_map<std::string, KnownFile> known;
    known.reserve(static_cast<size_t>(database_.number("SELECT count(*) FROM segments", 0)));
    Statement find(database_.handle(), "SELECT file, bytes, finished FROM segments");
    while (find.next())
        known.emplace(find.text(0), KnownFile{find.number(1), find.number(2) != 0});
    return known;
}

/* The condition has two parameters: the ends of the span. */
std::vector<SegmentRow> Index::segments_where(const std::string &condition, const IndexQuery &query,
                                              const std::string &order, int64_t most)
{
    const std::string sql = std::string(kSegmentColumns) + " WHERE " + condition + of_cameras(query) +
                            " AND (?3 = '' OR stream = ?3) ORDER BY " + order + " LIMIT ?4";
    Statement find(database_.handle(), sql.c_str());
    find.bind(0, query.span.from_us).bind(1, query.span.to_us).bind(2, query.stream).bind(3, most);
    std::vector<SegmentRow> rows;
    while (find.next())
        rows.push_back(segment_of(find));
    return rows;
}

std::vector<SegmentRow> Index::segments(const IndexQuery &query, int64_t most)
{
    return segments_where("to_us > ?1 AND from_us < ?2", query, "from_us, channel, file", most);
}

std::optional<SegmentRow> Index::segment(const std::string &path)
{
    const std::string sql = std::string(kSegmentColumns) + " WHERE file = ?";
    Statement find(database_.handle(), sql.c_str());
    find.bind(0, name_in_directory(path));
    if (!find.next()) return std::nullopt;
    return segment_of(find);
}

std::optional<SegmentRow> Index::segment_before(const IndexQuery &query, int64_t at_us)
{
    IndexQuery before = query;
    before.span = {INT64_MIN, at_us};
    const auto rows = segments_where("from_us < ?2 AND ?1 < ?2", before, "from_us DESC", 1);
    return rows.empty() ? std::nullopt : std::optional(rows.front());
}

std::optional<SegmentRow> Index::segment_after(const IndexQuery &query, int64_t at_us)
{
    IndexQuery after = query;
    after.span = {at_us, INT64_MAX};
    const auto rows = segments_where("from_us >= ?1 AND ?1 < ?2", after, "from_us", 1);
    return rows.empty() ? std::nullopt : std::optional(rows.front());
}

std::vector<GapRow> Index::gaps(const IndexQuery &query)
{
    const std::string sql = "SELECT cameras.channel, cameras.name, stream, from_us, to_us, why FROM gaps"
                            " JOIN cameras ON camera = cameras.id WHERE to_us > ?1 AND from_us < ?2" +
                            of_cameras(query) + " AND (?3 = '' OR stream = ?3) ORDER BY from_us";
    Statement find(database_.handle(), sql.c_str());
    find.bind(0, query.span.from_us).bind(1, query.span.to_us).bind(2, query.stream);
    std::vector<GapRow> rows;
    while (find.next())
        rows.push_back({static_cast<int>(find.number(0)), find.text(1), find.text(2), find.number(3),
                        find.number(4), find.text(5)});
    return rows;
}

std::vector<EventRow> Index::events(const IndexQuery &query)
{
    const std::string sql = "SELECT cameras.channel, cameras.name, at_us, kind, text FROM events"
                            " JOIN cameras ON camera = cameras.id WHERE at_us >= ?1 AND at_us < ?2" +
                            of_cameras(query) + " ORDER BY at_us";
    Statement find(database_.handle(), sql.c_str());
    find.bind(0, query.span.from_us).bind(1, query.span.to_us);
    std::vector<EventRow> rows;
    while (find.next())
        rows.push_back(
            {static_cast<int>(find.number(0)), find.text(1), find.number(2), find.text(3), find.text(4)});
    return rows;
}

std::vector<PinRow> Index::pins()
{
    Statement find(database_.handle(),
                   "SELECT pins.id, cameras.channel, cameras.name, from_us, to_us FROM pins"
                   " JOIN cameras ON camera = cameras.id ORDER BY from_us");
    std::vector<PinRow> rows;
    while (find.next())
        rows.push_back({find.number(0),
                        static_cast<int>(find.number(1)),
                        find.text(2),
                        {find.number(3), find.number(4)}});
    return rows;
}

std::vector<TimeSpan> Index::recorded(const IndexQuery &query, int64_t joined_us)
{
    const std::vector<GapRow> holes = gaps(query); /* by their beginnings */
    std::vector<TimeSpan> pieces;
    for (const SegmentRow &segment : segments(query)) {
        int64_t from_us = segment.from_us;
        auto hole = std::ranges::lower_bound(holes, from_us, {}, &GapRow::from_us);
        for (; hole != holes.end() && hole->from_us < segment.to_us; ++hole) {
            if (!is_within(*hole, segment) || hole->to_us - hole->from_us <= joined_us) continue;
            if (hole->from_us > from_us) pieces.push_back({from_us, hole->from_us});
            from_us = std::max(from_us, hole->to_us);
        }
        if (from_us < segment.to_us || from_us == segment.from_us) pieces.push_back({from_us, segment.to_us});
    }
    /* A file may cover a gap inside another file, when the clock was set between them. */
    std::ranges::sort(pieces, {}, &TimeSpan::from_us);
    std::vector<TimeSpan> spans;
    for (const TimeSpan &piece : pieces) {
        if (!spans.empty() && piece.from_us <= spans.back().to_us + joined_us)
            spans.back().to_us = std::max(spans.back().to_us, piece.to_us);
        else
            spans.push_back(piece);
    }
    return spans;
}

int64_t Index::total_bytes()
{
    return database_.number("SELECT total(bytes) FROM segments", 0);
}

int64_t Index::unpinned_bytes()
{
    return database_.number((std::string("SELECT total(bytes) FROM segments WHERE ") + kMayGo).c_str(), 0);
}

std::optional<SegmentRow> Index::oldest_unpinned(const std::vector<std::string> &but_paths)
{
    const std::string sql = std::string(kSegmentColumns) + " WHERE " + kMayGo + " ORDER BY to_us LIMIT ?";
    Statement find(database_.handle(), sql.c_str());
    find.bind(0, static_cast<int64_t>(but_paths.size()) + 1);
    while (find.next()) {
        SegmentRow segment = segment_of(find);
        if (std::ranges::find(but_paths, segment.path) == but_paths.end()) return segment;
    }
    return std::nullopt;
}

} // namespace nvrec
