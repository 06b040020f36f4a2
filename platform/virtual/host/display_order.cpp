/* display_order.cpp - see display_order.h. */
#include "host/display_order.h"

#include <algorithm>
#include <utility>

namespace vboard
{
namespace
{

constexpr unsigned kMostKeptBack = 16;    // frames that a decoded picture buffer can hold
constexpr unsigned kMostPatience = 4;     // of any order of decoding in use
constexpr int kUsualStep = 2;             // a frame counts its two fields
constexpr unsigned kDistancesToLearn = 4; // before a longer step is believed

} // namespace

bool DisplayOrder::drains_before_idr() const
{
    return !held_.empty() && !sequence_.reorder && !reorders_;
}

unsigned DisplayOrder::goes_in(uint64_t id, int order_count, bool is_idr, Coded coded)
{
    const bool second_field = is_second_field(coded);
    last_coded_ = second_field ? Coded::frame : coded;
    if (!second_field) {
        if (is_idr) {
            ++sequence_number_;
            reorders_ = false;
            highest_ = order_count;
        }
        reorders_ = reorders_ || order_count < highest_;
        highest_ = std::max(highest_, order_count);
        for (Held &held : held_)
            if (held.sequence == sequence_number_ && held.order_count < order_count) ++held.passed;
        held_.push_back({id, sequence_number_, order_count, 0, is_idr, false});
    }
    const auto held = static_cast<unsigned>(held_.size());
    if (sequence_.reorder)
        keeps_back_ = std::min(*sequence_.reorder, kMostKeptBack);
    else
        keeps_back_ =
            held_.empty() || is_due(*next_out()) ? std::min(held, kMostKeptBack + 1) - 1 : kMostKeptBack;
    // The first field of a frame brings nothing out.
    expects_one_ = held > keeps_back_ && last_coded_ == Coded::frame;
    return keeps_back_;
}

void DisplayOrder::came_out(uint64_t id)
{
    const auto found =
        std::find_if(held_.begin(), held_.end(), [&](const Held &held) { return held.id == id; });
    expects_one_ = false;
    if (found == held_.end()) {
        std::erase_if(missing_, [&](const Held &missing) { return missing.id == id; });
        return;
    }
    const Held shown = *found;
    held_.erase(found);
    const auto was_before = [&](const Held &other) {
        return other.sequence < shown.sequence ||
               (other.sequence == shown.sequence && other.order_count < shown.order_count);
    };
    late_ += static_cast<unsigned>(std::erase_if(missing_, was_before));
    for (auto held = held_.begin(); held != held_.end();) {
        if (!was_before(*held)) {
            ++held;
            continue;
        }
        if (!held->failed) ++late_;
        held = held_.erase(held);
    }
    note_shown(shown);
}

void DisplayOrder::done(unsigned kept_back, bool failed)
{
    if (failed && !held_.empty()) held_.back().failed = true;
    // libavcodec may have raised the number by what it saw itself: then it keeps one more. Otherwise
    // the picture whose turn it was is gone, because a later one was shown already or because it
    // could not be decoded.
    if (std::exchange(expects_one_, false) && kept_back <= keeps_back_ && !held_.empty()) drop(next_out());
}

void DisplayOrder::drained()
{
    const auto gone_unseen = [](const Held &held) { return !held.failed; };
    late_ += static_cast<unsigned>(std::count_if(held_.begin(), held_.end(), gone_unseen) + missing_.size());
    forget();
}

void DisplayOrder::forget()
{
    held_.clear();
    missing_.clear();
    last_shown_.reset();
    last_coded_ = Coded::frame;
    reorders_ = false;
    expects_one_ = false;
}

unsigned DisplayOrder::take_late()
{
    return std::exchange(late_, 0u);
}

// Of the oldest sequence the picture with the lowest count, as the decoder chooses it.
std::deque<DisplayOrder::Held>::iterator DisplayOrder::next_out()
{
    return std::min_element(held_.begin(), held_.end(), [](const Held &a, const Held &b) {
        return a.sequence != b.sequence ? a.sequence < b.sequence : a.order_count < b.order_count;
    });
}

bool DisplayOrder::is_due(const Held &next) const
{
    if (sequence_.order_count_type == 2) return true;
    if (next.is_idr || next.sequence != sequence_number_) return true;
    if (!last_shown_ || last_shown_->sequence != next.sequence) return true; // nothing to measure by
    if (next.order_count - last_shown_->order_count <= step()) return true;
    return next.passed > patience_ || held_.size() > sequence_.decoded_picture_buffer;
}

bool DisplayOrder::is_second_field(Coded coded) const
{
    return (coded == Coded::bottom_field && last_coded_ == Coded::top_field) ||
           (coded == Coded::top_field && last_coded_ == Coded::bottom_field);
}

// The distance in order counts from one picture to the next.
int DisplayOrder::step() const
{
    if (distances_ == 0) return kUsualStep;
    return distances_ < kDistancesToLearn ? std::min(kUsualStep, shortest_distance_) : shortest_distance_;
}

// A picture that will not come out any more, as far as can be told: what follows it will show.
void DisplayOrder::drop(const std::deque<Held>::const_iterator &lost)
{
    const Held gone = *lost;
    held_.erase(lost);
    const bool has_place = last_shown_ && last_shown_->sequence == gone.sequence;
    if (!has_place || gone.order_count > last_shown_->order_count) {
        last_shown_ = Shown{gone.sequence, gone.order_count}; // nobody waits for it
        if (!gone.failed) missing_.push_back(gone);
        if (missing_.size() > kMostKeptBack) { // more than a decoder can hold back
            missing_.pop_front();
            ++late_;
        }
        return;
    }
    if (gone.failed) return;
    ++late_;
    patience_ = std::min(patience_ + 1, kMostPatience);
    learn_distance(last_shown_->order_count - gone.order_count);
}

void DisplayOrder::learn_distance(int distance)
{
    if (distance <= 0) return;
    shortest_distance_ = distances_ == 0 ? distance : std::min(shortest_distance_, distance);
    distances_ = std::min(distances_ + 1, kDistancesToLearn);
}

void DisplayOrder::note_shown(const Held &shown)
{
    if (last_shown_ && last_shown_->sequence == shown.sequence)
        learn_distance(shown.order_count - last_shown_->order_count);
    last_shown_ = Shown{shown.sequence, shown.order_count};
}

} // namespace vboard
