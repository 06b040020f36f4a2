/*
 * player.h - playback in the wall: takes the display from the cameras, plays the files, and gives the display
 * back.
 *
 *   live -> play(): ext_playback_start, decoders of the files' codecs, the files' layout
 *        -> playing, paused, sought, enlarged
 *        -> live(): ext_playback_stop, decoders of the cameras' codecs, ext_playback_exit, the
 *           cameras' layout
 *
 * The library plays on decoder channels 0 to 7. More than eight files are divided into pages of eight, which
 * are shown one after another. A file plays on the channel with its number in its page.
 *
 * Files without a time of day play page after page. Recordings with times of day are in step on all pages:
 * when a page has nothing more, playback goes on at the same time on a page that has.
 *
 * At a place behind the last recording, the last picture is shown and playback stands still.
 *
 * Keys: play, pause, stop (back to the cameras), faster (1, 2, 4 times), left and right (10 s, or what
 * set_key_step() says), previous (the beginning), next (the next page), enter or a double click (one
 * picture alone).
 */
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "play/playback.h"
#include "play/track_plans.h"
#include "wall/double_click.h"
#include "wall/module.h"

namespace nvrec
{

struct PlayerOptions {
    std::vector<std::string> files; /* or, when there is one, the plan         */
    PlayPlan plan;
    int64_t at_us = 0;           /* of a plan with a base: the time of day to begin at, 0 = its beginning */
    std::string layout = "auto"; /* of the files                               */
    double seek_s = 0;           /* where to begin                             */
    double speed = 1;            /* 1, 2 or 4                                  */
    int heard = 0;               /* the file whose sound is heard; -1 = none   */
    std::string wav_path;        /* what the loudspeaker plays; empty = nowhere */
    bool loop = false;           /* begin again at the end                     */
    std::string output;          /* for the report                             */
    std::string json_path;       /* where the files' table goes; empty = none  */
};

class Player final : public Module
{
public:
    explicit Player(const PlayerOptions &options);

    bool start(WallControl &wall) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    void before_layout() override;
    void on_layout() override;
    InputLayer input_layer() const override { return InputLayer::kPlayback; }
    bool on_key(Key key) override;
    bool on_pointer(const PointerEvent &event) override;
    bool busy() const override { return !done_; }
    std::string progress(double seconds) const override;
    void stop() override;
    void report() override;

    /** Do not begin by itself: play() begins. Before the wall runs. */
    void wait_for_order() { wait_ = true; }

    /* What keys and scripts ask for; without effect where it makes no sense. */
    void play();
    void live();
    void pause(bool paused);
    void seek(double position_s);
    void skip(double by_s);
    /** By how much the keys left and right jump. */
    void set_key_step(int64_t step_us) { key_step_us_ = step_us; }
    void set_speed(double speed);
    void enlarge(int file); /* -1 = the layout again */
    void turn_to_page(int page);
    void hear(int file);

    void end();
    /** Something else went wrong: nvrec is to end with this code. */
    void fail(int exit_code, const std::string &line);

    /** The number of pages that so many files make, and whether playback can run at that speed. */
    static int pages_of(int files);
    static bool is_speed(double times);

    bool playing() const { return playing_; }
    const Playback &playback() const { return playback_; }
    const PlayPlan &plan() const { return plan_; }
    int page() const { return page_; }
    /**
     * Go to a place: every shown track shows its picture of that place, or a dark pane when nothing was
     * recorded. Behind the last recording of the page: go to its last picture and stand still there until an
     * order comes.
     */
    void go_to(int64_t position_us);
    /** By how much the keys jump unless set_key_step() was called. */
    static constexpr int64_t kKeyStep_us = 10'000'000;
    /** Size of the picture of the file that plays on a channel; zeros = none plays. */
    std::pair<uint32_t, uint32_t> picture_size(int channel) const override;

private:
    Player(const PlayerOptions &options, PlayPlan plan);
    bool begin_where_asked();
    Clock::time_point pass_gap(Clock::time_point now);
    int pages() const;
    int page_after(int page) const;
    int64_t begin_us() const;
    int64_t last_place_us() const;
    int64_t next_recorded_us(int page, int64_t position_us) const;
    int page_that_goes_on(int64_t position_us, int first) const;
    bool follow_pages();
    bool follow_time();
    std::vector<size_t> tracks_of(int page) const;
    std::vector<size_t> tracks_of_page() const { return tracks_of(page_); }
    void at_end_of_page();
    void change_page(int page);
    void match_decoders_to_cameras();
    void count_from_here();
    void count_to_here();
    void hand_back();
    void show_files();
    void show_again();

    const PlayerOptions options_;
    const PlayPlan plan_;
    Playback playback_;
    Clock::time_point gap_seen_at_ = Clock::time_point::max(); /* since when nothing is shown */
    WallControl *wall_ = nullptr;
    bool wait_ = false;     /* for an order to begin                                    */
    bool begun_ = false;    /* play() was called                                        */
    bool playing_ = false;  /* the library is in playback                               */
    bool done_ = false;     /* nothing more is to come                                  */
    bool changing_ = false; /* between before_layout and on_layout                     */

    bool stands_at_end_ = false; /* because somebody went behind it */
    int64_t key_step_us_ = kKeyStep_us;
    int page_ = 0;
    std::vector<int64_t> over_us_;       /* by page, where its recordings came to their end */
    uint64_t sent_at_loop_ = UINT64_MAX; /* pictures, when playback began anew last */
    int single_ = -1;                    /* the channel that plays alone */
    int exit_code_ = 0;
    double played_s_ = 0;
    Clock::time_point began_at_;
    Layout live_layout_ = Layout::kSingle; /* the screen before playback */
    int live_enlarged_ = -1;
    DoubleClick clicks_;
};

} // namespace nvrec
