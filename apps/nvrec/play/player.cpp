/* player.cpp - see player.h: into playback and back, and the layout of the screen. */
#include "play/player.h"

#include <algorithm>
#include <cstdio>

#include "archive/time_of_day.h"
#include "camera/decoder_codec.h"
#include "console/exit_code.h"
#include "console/terminal.h"
#include "console/text.h"
#include "host/host.h"
#include "nvrhal.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr auto kLastSound = std::chrono::seconds(2);
/* A gap of at least so long is passed over once it was seen so long; looked for so often. */
constexpr int64_t kPassedGap_us = 5'000'000;
constexpr auto kGapShown = std::chrono::seconds(3);
constexpr auto kGapLook = std::chrono::milliseconds(500);

/* A plan whose spans have an entry for each track, which may be empty. */
PlayPlan whole(PlayPlan plan)
{
    plan.recorded.resize(plan.tracks.size());
    return plan;
}

} // namespace

Player::Player(const PlayerOptions &options)
    : Player(options, options.plan.tracks.empty() ? plan_of_files(options.files) : options.plan)
{
}

Player::Player(const PlayerOptions &options, PlayPlan plan)
    : options_(options), plan_(whole(std::move(plan))), playback_(plan_.tracks)
{
}

bool Player::start(WallControl &wall)
{
    wall_ = &wall;
    over_us_.assign(static_cast<size_t>(pages()), INT64_MAX);
    const size_t opened = playback_.open(begin_us());
    for (size_t i = 0; i < playback_.tracks().size(); ++i) {
        const PlaybackTrack &track = *playback_.tracks()[i];
        if (track.opened()) continue;
        wall.terminal().error((track.name().empty() ? "file " + std::to_string(i) : track.name()) + ": " +
                              track.trouble());
        exit_code_ = kExitInputFailed;
    }
    if (opened == 0) {
        wall.terminal().error("no file could be opened");
        wall.end(kExitInputFailed);
        return false;
    }
    if (!options_.wav_path.empty()) {
        const std::string problem = host::open_sound_file(options_.wav_path);
        if (!problem.empty()) {
            wall.terminal().error(problem);
            wall.end(kExitOutputFailed);
            return false;
        }
    }
    playback_.start([&wall] { wall.wake(); });
    return true;
}

Clock::time_point Player::take_turn(Clock::time_point now)
{
    if (!begun_ && !wait_) play();
    if (playing_ && playback_.waits_for_decoders()) show_again();
    if (playing_ && playback_.ended()) {
        at_end_of_page();
        wall_->wake(); /* the wall has something to decide */
    }
    return pass_gap(now);
}

/* When nothing was recorded of any shown camera, the screen shows that for a moment. Then playback goes on
 * with the next recording. */
Clock::time_point Player::pass_gap(Clock::time_point now)
{
    const bool several = std::any_of(plan_.tracks.begin(), plan_.tracks.end(),
                                     [](const TrackPlan &track) { return track.files.size() > 1; });
    if ((!several && !plan_.has_base) || !playing_ || playback_.paused() || playback_.ended()) {
        gap_seen_at_ = Clock::time_point::max();
        return Clock::time_point::max();
    }
    const int64_t next_us = playback_.next_due_us();
    if (next_us == INT64_MAX || next_us - playback_.position_us() < kPassedGap_us) {
        gap_seen_at_ = Clock::time_point::max();
        return now + kGapLook;
    }
    if (gap_seen_at_ == Clock::time_point::max()) gap_seen_at_ = now;
    if (now - gap_seen_at_ < kGapShown) return gap_seen_at_ + kGapShown;
    gap_seen_at_ = Clock::time_point::max();
    if (plan_.has_base)
        wall_->terminal().print("nothing was recorded until " + time_text(plan_.base_us + next_us));
    playback_.seek_exactly(next_us);
    return now + kGapLook;
}

std::pair<uint32_t, uint32_t> Player::picture_size(int channel) const
{
    if (!playing_) return {0, 0};
    for (const size_t i : tracks_of_page()) {
        if (playback_.tracks()[i]->decoder() != channel) continue;
        const StreamFacts facts = playback_.facts_of(i);
        return {facts.width_px, facts.height_px};
    }
    return {0, 0};
}

void Player::play()
{
    if (playing_) {
        pause(false);
        return;
    }
    live_layout_ = wall_->layout();
    live_enlarged_ = wall_->enlarged();
    const size_t files = std::min<size_t>(plan_.tracks.size(), Playback::kPlayers);
    if (ext_playback_start((1U << files) - 1, files > 1 ? 1 : 0) != 0) {
        wall_->terminal().error("the library did not enter playback");
        ext_playback_exit();
        done_ = true;
        wall_->end(kExitBoardFailed);
        return;
    }
    const bool first = !begun_;
    begun_ = playing_ = true;
    done_ = false;
    began_at_ = Clock::now();
    single_ = -1;
    if (first || playback_.ended()) {
        over_us_.assign(over_us_.size(), INT64_MAX);
        page_ = plan_.has_base ? std::max(0, page_that_goes_on(begin_us(), 0)) : 0;
    }
    if (first && plan_.has_base) playback_.set_position(begin_us());
    if (tracks_of_page().empty()) page_ = page_after(page_);
    count_from_here();
    if (first) playback_.pause(true); /* nothing runs before it is where and as fast as it is to be */
    show_files();
    if (first) {
        hear(options_.heard);
        set_speed(options_.speed);
        if (!begin_where_asked()) return;
        playback_.pause(false);
    } else if (playback_.ended() || stands_at_end_) {
        plan_.has_base ? go_to(begin_us()) : seek(0);
    }
}

/* False: nothing is recorded there; that is told, and nvrec ends. */
bool Player::begin_where_asked()
{
    if (options_.seek_s <= 0) return true;
    if (playback_.ends_before(static_cast<int64_t>(options_.seek_s * 1e6))) {
        fail(kExitUsage, text("--seek %g: the recordings end before that", options_.seek_s));
        done_ = true;
        wall_->end(kExitUsage);
        return false;
    }
    seek(options_.seek_s);
    return true;
}

void Player::show_files()
{
    const std::vector<size_t> tracks = tracks_of_page();
    const int panes = tracks.empty() ? 1 : playback_.tracks()[tracks.back()]->decoder() + 1;
    wall_->show_layout(layout_named(options_.layout).value_or(layout_for(panes)));
}

/* Apply the layout once more: decoders were made for other codecs and are bound to no pane. */
void Player::show_again()
{
    const int alone = wall_->enlarged();
    wall_->show_layout(wall_->layout());
    if (alone >= 0) wall_->enlarge(alone);
}

void Player::count_from_here()
{
    for (const size_t i : tracks_of_page())
        playback_.tracks()[i]->begin_count();
}

/* Decoder counts of the files do not belong to the cameras on the same channels. */
void Player::count_to_here()
{
    for (const size_t i : tracks_of_page()) {
        PlaybackTrack &track = *playback_.tracks()[i];
        wall_->reporter().leave_out(track.decoder(), track.end_count());
    }
}

/* Live intake remembers the codec that it gave a channel, and would not change the decoder again. */
void Player::match_decoders_to_cameras()
{
    for (const auto &camera : wall_->cameras()) {
        if (camera->opened()) match_decoder(camera->channel(), camera->facts().codec);
    }
}

/* Take the library out of playback; the screen is dark then. */
void Player::hand_back()
{
    playback_.freeze();
    playing_ = false;
    played_s_ += std::chrono::duration<double>(Clock::now() - began_at_).count();
    count_to_here();
    ext_playback_stop();
    match_decoders_to_cameras(); /* while live frames are still kept out */
    ext_playback_exit();
}

void Player::live()
{
    if (!playing_) return;
    hand_back();
    done_ = true;
    wall_->show_layout(live_layout_);
    wall_->enlarge(live_enlarged_);
}

/*
 * Show another picture alone, or all again. The library drains the decoder of a channel that appears or
 * disappears before the panes change. The files stand still from here until the layout is applied.
 */
void Player::before_layout()
{
    if (!playing_) return;
    playback_.freeze();
    changing_ = true;
    const int next = wall_->enlarged();
    if (next != single_) {
        if (single_ >= 0) ext_signal_spilt_exit(static_cast<uint32_t>(single_));
        if (next >= 0) ext_signal_spilt_start(static_cast<uint32_t>(next));
        single_ = next;
    }
    playback_.make_decoders_fit(tracks_of_page());
}

void Player::on_layout()
{
    if (!changing_) return;
    changing_ = false;
    const std::vector<DispAttrib> &panes = wall_->session().panes();
    std::vector<size_t> shown;
    for (const size_t i : tracks_of_page()) {
        const int decoder = playback_.tracks()[i]->decoder();
        if (std::any_of(panes.begin(), panes.end(),
                        [decoder](const DispAttrib &pane) { return pane.channel == decoder; }))
            shown.push_back(i);
    }
    playback_.thaw(shown);
}

std::string Player::progress(double seconds) const
{
    if (!playing_) return {};
    char line[160];
    const int64_t position_us = playback_.position_us();
    const std::string at = plan_.has_base ? time_text(plan_.base_us + position_us)
                                          : text("%.1f s", static_cast<double>(position_us) / 1e6);
    std::snprintf(line, sizeof line, "%7.1f s  playing at %s, %gx%s  %zu files, page %d of %d  sent %llu",
                  seconds, at.c_str(), playback_.speed(), playback_.paused() ? ", paused" : "",
                  plan_.tracks.size(), page_ + 1, pages(), static_cast<unsigned long long>(playback_.sent()));
    return line;
}

void Player::stop()
{
    if (playing_) hand_back();
    playback_.stop();
    for (const auto &track : playback_.tracks()) {
        if (!track->trouble().empty()) fail(kExitInputFailed, {});
    }
    if (!options_.wav_path.empty()) {
        host::wait_for_sound(kLastSound);
        host::close_sound();
    }
    if (exit_code_ != kExitDone) wall_->end(exit_code_);
}

void Player::report()
{
    std::vector<ChannelReport> files;
    for (size_t i = 0; i < playback_.tracks().size(); ++i)
        files.push_back(playback_.tracks()[i]->report(static_cast<int>(i)));
    for (const std::string &line : table_of(files))
        wall_->terminal().print(line);
    if (options_.json_path.empty()) return;
    if (write_text(options_.json_path, json_of(files, options_.layout, options_.output, played_s_))) return;
    wall_->terminal().error("cannot write " + options_.json_path);
    wall_->end(kExitOutputFailed);
}

} // namespace nvrec
