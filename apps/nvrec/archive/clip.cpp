/* clip.cpp - see clip.h: what a clip is made of, file by file. */
#include "archive/clip.h"

#include <algorithm>
#include <filesystem>
#include <memory>

#include "archive/clip_files.h"
#include "archive/edit_list.h"

namespace nvrec
{
namespace
{

/* Recordings follow one another within this: less is no gap to a user. */
constexpr int64_t kNoGap_us = 1'500'000;
/* In a file, sound lies up to a fragment behind the pictures that it belongs to. */
constexpr int64_t kSoundLate_us = 3'000'000;
/* Files of one run overlap by less, the pictures that a decoder held back: more is a clock set back. */
constexpr int64_t kOverlap_us = 2'000'000;

/*
 * Put each segment behind the one that it follows in time. A time that was recorded twice makes a second run.
 */
std::vector<std::vector<SegmentRow>> in_runs(const std::vector<SegmentRow> &segments)
{
    std::vector<std::vector<SegmentRow>> runs;
    const auto end = [](const std::vector<SegmentRow> &run) { return run.back().to_us; };
    for (const SegmentRow &segment : segments) {
        auto follows = runs.end();
        for (auto run = runs.begin(); run != runs.end(); ++run) {
            const bool fits = segment.from_us >= end(*run) - kOverlap_us;
            if (fits && (follows == runs.end() || end(*run) > end(*follows))) follows = run;
        }
        if (follows == runs.end()) follows = runs.emplace(runs.end());
        follows->push_back(segment);
    }
    return runs;
}

class ClipMaker
{
public:
    explicit ClipMaker(const ClipOptions &options) : options_(options) {}

    ClipResult make(const std::vector<SegmentRow> &segments)
    {
        for (const std::vector<SegmentRow> &run : in_runs(segments)) {
            for (const SegmentRow &segment : run) {
                if (!result_.problem.empty()) break;
                copy(segment);
            }
            finish();
        }
        tell_gaps();
        if (result_.files.empty() && result_.problem.empty())
            result_.problem = "nothing is recorded in that time";
        return std::move(result_);
    }

private:
    void copy(const SegmentRow &segment)
    {
        ClipSource source;
        if (!source.open(segment.path, segment.from_us, options_.span.from_us)) {
            result_.unreadable.push_back(segment.path + ": " + source.error());
            return;
        }
        ClipPacket packet;
        bool begun = false, pictures_over = false;
        while (result_.problem.empty() && source.read(&packet)) {
            if (!packet.sound && !begun) {
                if (!packet.key) continue;
                begun = true;
                if (!output_ || !output_->can_take(source) || packet.wall_us < last_us_ - kOverlap_us) {
                    finish();
                    if (!begin(source, packet)) return;
                }
            }
            if (!begun && !output_) continue;
            if (packet.sound) {
                if (packet.wall_us < options_.span.to_us) {
                    if (!output_->write(packet)) fail();
                } else if (pictures_over) {
                    break;
                }
                continue;
            }
            if (is_over(packet)) {
                pictures_over = true;
                if (packet.dts_us >= options_.span.to_us + kSoundLate_us) break;
            }
            if (pictures_over) continue;
            note(packet.wall_us, packet.wall_us + packet.duration_us);
            if (!output_->write(packet)) fail();
        }
        if (!source.error().empty()) result_.unreadable.push_back(segment.path + ": " + source.error());
    }

    /*
     * Pictures are in decoding order: after one that lies behind the end, earlier ones may come up to the
     * next key frame.
     */
    bool is_over(const ClipPacket &picture) const
    {
        return (picture.key && picture.wall_us >= options_.span.to_us) ||
               (options_.exact && picture.dts_us >= options_.span.to_us);
    }

    bool begin(const ClipSource &source, const ClipPacket &first)
    {
        const std::string path = numbered(result_.files.size());
        if (!result_.files.empty() && !options_.overwrite && std::filesystem::exists(path)) {
            result_.problem = path + " is there already";
            result_.write_failed = true;
            return false;
        }
        output_ = std::make_unique<ClipOutput>();
        last_us_ = first.wall_us;
        /* With an edit list the part before `from` has negative times. */
        const int64_t origin_us =
            options_.exact ? std::max(options_.span.from_us, first.wall_us) : first.wall_us;
        result_.files.push_back({path, {origin_us, origin_us}, 0});
        if (output_->open(path, source, origin_us)) return true;
        fail();
        output_.reset();
        result_.files.pop_back();
        return false;
    }

    std::string numbered(size_t count) const
    {
        if (count == 0) return options_.path;
        const size_t dot = options_.path.find_last_of('.');
        return options_.path.substr(0, dot) + "-" + std::to_string(count + 1) + options_.path.substr(dot);
    }

    void note(int64_t from_us, int64_t to_us)
    {
        ClipFile &file = result_.files.back();
        ++file.pictures;
        last_us_ = std::max(last_us_, from_us);
        file.span.to_us = std::max(file.span.to_us, to_us);
        if (!held_.empty() && from_us <= held_.back().to_us + kNoGap_us && from_us >= held_.back().from_us)
            held_.back().to_us = std::max(held_.back().to_us, to_us);
        else
            held_.push_back({from_us, to_us});
    }

    void finish()
    {
        if (!output_) return;
        ClipFile &file = result_.files.back();
        if (!output_->close()) fail();
        output_.reset();
        if (!options_.exact || !result_.problem.empty()) return;
        file.span.to_us = std::min(file.span.to_us, options_.span.to_us);
        result_.problem = set_shown_length(file.path, file.span.to_us - file.span.from_us);
    }

    void fail()
    {
        result_.write_failed = true;
        if (result_.problem.empty()) result_.problem = result_.files.back().path + ": " + output_->error();
    }

    /* Note the parts of the span that no picture covers. */
    void tell_gaps()
    {
        std::ranges::sort(held_, {}, &TimeSpan::from_us);
        int64_t until_us = options_.span.from_us;
        for (const TimeSpan &span : held_) {
            if (span.from_us > until_us + kNoGap_us) result_.gaps.push_back({until_us, span.from_us});
            until_us = std::max(until_us, span.to_us);
        }
        if (!held_.empty() && options_.span.to_us > until_us + kNoGap_us)
            result_.gaps.push_back({until_us, options_.span.to_us});
    }

    const ClipOptions options_;
    ClipResult result_;
    std::unique_ptr<ClipOutput> output_;
    int64_t last_us_ = 0; /* of the pictures in output_, when the last one was taken */
    std::vector<TimeSpan> held_;
};

} // namespace

std::string clip_path_problem(const std::string &path, bool exact)
{
    const size_t dot = path.find_last_of('.');
    const std::string ending = dot == std::string::npos ? "" : path.substr(dot);
    if (ending == ".mkv")
        return exact ? path + ": an exact clip needs an edit list, which .mp4 has and .mkv has not" : "";
    if (ending == ".mp4" || ending == ".mov") return {};
    return path + ": a clip is called .mp4, .mov or .mkv";
}

ClipResult write_clip(const std::vector<SegmentRow> &segments, const ClipOptions &options)
{
    return ClipMaker(options).make(segments);
}

} // namespace nvrec
