/* track_plans.cpp - see track_plans.h. */
#include "play/track_plans.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>

#include "archive/file_extent.h"
#include "archive/intake.h"

namespace nvrec
{
namespace
{

constexpr int64_t kJoinedSpans_us = 2'000'000;

/* A recording by its name and its structure; nothing = another file. */
struct NamedFile {
    std::string path;
    RecordingName says;
    int64_t to_us = 0;
};

std::optional<NamedFile> named_file(const std::string &path)
{
    const auto says = recording_name(name_in_directory(path));
    if (!says) return std::nullopt;
    return NamedFile{path, *says, says->from_us + extent_of(path).duration_us};
}

} // namespace

PlayPlan plan_of_files(const std::vector<std::string> &files)
{
    PlayPlan plan;
    std::map<std::string, size_t> tracks; /* directory, channel and stream -> track */
    std::vector<TimeSpan> spans;
    bool all_named = true;
    for (const std::string &path : files) {
        const auto named = named_file(path);
        all_named &= named.has_value();
        if (!named) {
            plan.tracks.push_back({"", {{path, 0}}});
            plan.recorded.push_back({{0, extent_of(path).duration_us}});
            spans.push_back({});
            continue;
        }
        const std::string key = std::filesystem::path(path).parent_path().string() + "|" +
                                std::to_string(named->says.channel) + named->says.stream;
        const auto [found, is_new] = tracks.emplace(key, plan.tracks.size());
        if (is_new) {
            plan.tracks.emplace_back();
            plan.recorded.emplace_back();
            spans.push_back({INT64_MAX, INT64_MIN});
        }
        plan.tracks[found->second].files.push_back({path, named->says.from_us});
        plan.recorded[found->second].push_back({named->says.from_us, named->to_us});
        TimeSpan &span = spans[found->second];
        span = {std::min(span.from_us, named->says.from_us), std::max(span.to_us, named->to_us)};
    }
    TimeSpan shared = {INT64_MIN, INT64_MAX}, whole = {INT64_MAX, INT64_MIN};
    for (const TimeSpan &span : spans) {
        shared = {std::max(shared.from_us, span.from_us), std::min(shared.to_us, span.to_us)};
        whole = {std::min(whole.from_us, span.from_us), std::max(whole.to_us, span.to_us)};
    }
    const bool in_step = all_named && !files.empty() && shared.from_us < shared.to_us;
    for (size_t i = 0; i < plan.tracks.size(); ++i) {
        TrackPlan &track = plan.tracks[i];
        track.dated = in_step;
        std::ranges::sort(track.files, {}, &TrackFile::from_us);
        const int64_t base_us = in_step ? whole.from_us : track.files.front().from_us;
        for (TrackFile &file : track.files)
            file.from_us -= base_us;
        for (TimeSpan &span : plan.recorded[i])
            span = {span.from_us - base_us, span.to_us - base_us};
        /* A bare stream does not say how long it is. */
        std::erase_if(plan.recorded[i], [](const TimeSpan &span) { return span.to_us <= span.from_us; });
    }
    if (in_step) {
        plan.base_us = whole.from_us;
        plan.has_base = true;
    }
    return plan;
}

PlayPlan plan_of_archive(Index &index, const std::vector<CameraRow> &cameras, const std::string &stream)
{
    PlayPlan plan;
    plan.base_us = INT64_MAX;
    for (const CameraRow &camera : cameras) {
        const IndexQuery query = {{camera.id}, stream};
        TrackPlan track = {camera.shown(), {}, true};
        for (const SegmentRow &segment : index.segments(query)) {
            track.files.push_back({segment.path, segment.from_us});
            plan.base_us = std::min(plan.base_us, segment.from_us);
        }
        if (track.files.empty()) continue;
        plan.tracks.push_back(std::move(track));
        plan.recorded.push_back(index.recorded(query, kJoinedSpans_us));
    }
    plan.has_base = !plan.tracks.empty();
    for (TrackPlan &track : plan.tracks) {
        for (TrackFile &file : track.files)
            file.from_us -= plan.base_us;
    }
    for (std::vector<TimeSpan> &spans : plan.recorded) {
        for (TimeSpan &span : spans)
            span = {span.from_us - plan.base_us, span.to_us - plan.base_us};
    }
    return plan;
}

} // namespace nvrec
