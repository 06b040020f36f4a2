/* archive_reader.cpp - see archive_reader.h. */
#include "archive/archive_reader.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>

#include <dirent.h>

#include "archive/directory_lock.h"
#include "archive/intake.h"

namespace nvrec
{
namespace
{

/*
 * Two files of one camera may overlap by the pictures that a decoder held back; then the later file counts.
 */
constexpr int64_t kLongestFile_us = int64_t(7) * 24 * 3600 * 1'000'000;

char lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool same_letters(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, [](char x, char y) { return lower(x) == lower(y); });
}

/* How many letters have to be put in, taken out, changed, or swapped with their neighbour. */
size_t letters_apart(std::string_view a, std::string_view b)
{
    std::vector<std::vector<size_t>> cost(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i) {
        for (size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const bool same = lower(a[i - 1]) == lower(b[j - 1]);
            cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + !same});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[a.size()][b.size()];
}

} // namespace

std::string nearest_name(std::string_view text, const std::vector<std::string> &known)
{
    std::string nearest;
    size_t fewest = std::max<size_t>(1, text.size() / 2) + 1;
    for (const std::string &name : known) {
        const size_t apart = letters_apart(text, name);
        if (apart >= fewest) continue;
        fewest = apart;
        nearest = name;
    }
    return nearest;
}

std::string open_archive(const std::string &directory, Archive *archive)
{
    DIR *listing = opendir(directory.c_str());
    if (!listing) return directory + ": " + std::strerror(errno);
    closedir(listing);
    archive->recorded_into = is_recorded_into(directory);
    std::string problem = archive->index.open(directory);
    archive->in_memory = !problem.empty();
    if (archive->in_memory) problem = archive->index.open_in_memory(directory);
    if (!problem.empty()) return problem;
    if (!archive->index.note().empty()) archive->notes.push_back(archive->index.note());
    if (is_index_kept_up(directory) && !archive->index.made_anew()) return {};
    IntakeResult taken = take_in(archive->index, list_recordings(directory), {});
    archive->notes.insert(archive->notes.end(), taken.lines.begin(), taken.lines.end());
    return {};
}

std::vector<CameraRow> cameras_named(Index &index, const std::string &text, std::string *problem)
{
    std::vector<CameraRow> all = index.cameras();
    auto where = [&all](auto fits) {
        std::vector<CameraRow> rows;
        std::ranges::copy_if(all, std::back_inserter(rows), fits);
        return rows;
    };
    if (all.empty()) {
        *problem = index.directory() + " holds no recordings";
        return {};
    }
    if (text.empty()) return all;
    std::vector<CameraRow> rows = where([&](const CameraRow &row) { return row.shown() == text; });
    if (rows.empty()) rows = where([&](const CameraRow &row) { return same_letters(row.shown(), text); });
    int channel = -1;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), channel);
    if (rows.empty() && error == std::errc{} && rest == text.data() + text.size())
        rows = where([&](const CameraRow &row) { return row.channel == channel; });
    if (!rows.empty()) return rows;
    std::vector<std::string> known;
    std::string list;
    for (const CameraRow &row : all) {
        known.push_back(row.shown());
        list += (list.empty() ? "" : ", ") + row.shown();
    }
    const std::string nearest = nearest_name(text, known);
    *problem = "no camera \"" + text + "\" in " + index.directory() +
               (nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?") + " (known: " + list + ")";
    return {};
}

std::vector<int64_t> numbers_of(const std::vector<CameraRow> &cameras)
{
    std::vector<int64_t> numbers(cameras.size());
    std::ranges::transform(cameras, numbers.begin(), &CameraRow::id);
    return numbers;
}

Place find_place(Index &index, const IndexQuery &query, int64_t at_us)
{
    Place place;
    IndexQuery at = query;
    at.span = {at_us, at_us + 1};
    const std::vector<GapRow> gaps = index.gaps(at);
    const auto hole_in = [&gaps](const SegmentRow &segment) {
        const auto hole =
            std::ranges::find_if(gaps, [&segment](const GapRow &gap) { return is_within(gap, segment); });
        return hole == gaps.end() ? nullptr : &*hole;
    };
    /* The last file that began by then. When it holds nothing of that time, an earlier file may: it lasts
     * longer, because the clock was set back after it, or because it belongs to another camera of the same
     * name. */
    place.before = index.segment_before(query, at_us + 1);
    const auto covers = [at_us](const SegmentRow &segment) { return segment.to_us > at_us; };
    if (place.before && (!covers(*place.before) || hole_in(*place.before)) &&
        at_us - place.before->from_us < kLongestFile_us) {
        std::vector<SegmentRow> around = index.segments(at);
        const auto holds = std::ranges::find_if(around, [&](const SegmentRow &one) { return !hole_in(one); });
        if (holds != around.end())
            place.before = *holds;
        else if (!around.empty())
            place.before = around.back();
    }
    const GapRow *hole = place.before && covers(*place.before) ? hole_in(*place.before) : nullptr;
    if (place.before && covers(*place.before) && !hole) {
        place.segment = place.before;
        place.offset_us = at_us - place.segment->from_us;
        place.before.reset();
        return place;
    }
    if (!hole && !gaps.empty()) hole = &gaps.front();
    if (hole) place.gap = *hole;
    if (hole && place.before && covers(*place.before)) { /* the file holds what lies on both sides */
        place.after = place.before;
        place.before->to_us = hole->from_us;
        place.after->from_us = hole->to_us;
        return place;
    }
    place.after = index.segment_after(query, at_us + 1);
    return place;
}

} // namespace nvrec
