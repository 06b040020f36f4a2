/*
 * module.h - a part of the recorder that runs beside the wall: recording of the cameras, sound, the
 * overlay on the screen, playback, keys and mouse. Each is in source files of its own.
 *
 *   start() -> { on_unit(), on_audio() on the feeders' threads;
 *                take_turn(), on_layout(), on_key(), on_pointer() on the main thread } -> stop() -> report()
 *
 * The wall calls its modules in the order in which they were added, and stops them in reverse.
 */
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "camera/feeder.h"
#include "host/clock.h"
#include "wall/aspect.h"
#include "wall/layout.h"

namespace nvrec
{

class RecordingView;
class Reporter;
class Session;
class Terminal;

/** What a key of the remote control, the front panel or the keyboard asks for. */
enum class Key {
    kUp,
    kDown,
    kLeft,
    kRight,
    kEnter,
    kMenu,
    kBack,
    kDigit0, /* to kDigit0 + 9 */
    kDigit9 = kDigit0 + 9,
    kNextLayout,
    kPlay,
    kPause,
    kStop,
    kFaster,
    kPrevious,
    kNext,
    kRecord,
    kSnapshot,
    kZoom,
    kZoomIn,
    kZoomOut,
    kMute,
    kVolumeUp,
    kVolumeDown,
};

/** The mouse: where it is on the output, in pixels, and what changed. */
struct PointerEvent {
    int x = 0;
    int y = 0;
    uint32_t buttons = 0; /* held now: bit 0 left, 1 right, 2 middle */
    uint32_t pressed = 0; /* went down with this event                */
    int wheel = 0;        /* notches, up is positive                  */
};

/** A thread that tells when it gives its next sign of life at the latest; max() = it has nothing to do. */
struct WatchedThread {
    std::string name;
    std::function<Clock::time_point()> heartbeat_deadline; /* any thread */
};

/** The wall as its modules know it. Main thread, except where said. */
class WallControl
{
public:
    virtual ~WallControl() = default;

    virtual Session &session() = 0;
    virtual Terminal &terminal() = 0;
    virtual Reporter &reporter() = 0;
    virtual const std::vector<std::unique_ptr<Feeder>> &cameras() const = 0;

    /**
     * Give a channel another camera, or none by an empty address. The new camera is opened when the thread of
     * the one before has ended; all other cameras go on.
     */
    virtual void change_camera(int /*channel*/, const CameraSource & /*source*/) {}

    /** How a channel's pictures are placed in its pane from now on. */
    virtual void set_aspect(int /*channel*/, Aspect /*aspect*/) {}

    /** Show this layout, all panes. */
    virtual void show_layout(Layout layout) = 0;

    /** Show the smallest grid that fits the cameras, now and when cameras come or go. */
    virtual void show_fitting_layout() {}
    virtual Layout layout() const = 0;

    /** Show one camera on the whole screen; -1 = the layout again. */
    virtual void enlarge(int channel) = 0;
    virtual int enlarged() const = 0;

    /** The camera that keys and menus mean. */
    virtual void select(int channel) = 0;
    virtual int selected() const = 0;

    /** Whether someone sits in front of it. */
    virtual bool window_is_open() const { return false; }

    /** Offer a key or a mouse event to the modules, in the order of their InputLayer. */
    virtual void key(Key key) = 0;
    virtual void pointer(const PointerEvent &event) = 0;

    /** Give the modules a turn soon. Any thread. */
    virtual void wake() = 0;

    /** Whether something records now, for the lamp on the panel. */
    virtual void set_recording(bool /*on*/) {}
    virtual bool recording() const { return false; }

    /** The state of recording, for those who show it (wall/recording_status.h); null = nothing records. */
    virtual void set_recorder(const RecordingView * /*recorder*/) {}
    virtual const RecordingView *recorder() const { return nullptr; }

    /** Whether frames of that camera go into a file now. */
    virtual bool recording(int /*channel*/) const { return false; }

    /**
     * A trouble that the user must know of while it lasts, such as a disk that hangs; shown in one line on
     * the screen. Empty = none.
     */
    virtual void set_alarm(const std::string & /*text*/) {}
    virtual std::string alarm() const { return {}; }

    /**
     * Watch a module's thread as long as the wall runs: the watchdog is fed only while the thread is in time.
     */
    virtual void watch_thread(const WatchedThread & /*thread*/) {}
    virtual std::vector<WatchedThread> watched_threads() const { return {}; } /* any thread */

    /** End as if the user had asked; the first exit code other than 0 stays. */
    virtual void end(int exit_code) = 0;

    /** A user at the screen wants to end. While something records, the user is asked first. */
    virtual void end_by_user() { end(0); }
};

/**
 * The order in which modules are offered a key or a mouse event. The first that uses it takes it: an open
 * menu takes the arrows, without a menu a zoomed picture does, and so on.
 */
enum class InputLayer {
    kMenu,     /* while it is open                                         */
    kZoom,     /* of one picture                                           */
    kPlayback, /* of recordings                                            */
    kTools,    /* keys with one meaning everywhere: menu, snapshot, volume */
    kWall      /* what keys and mouse do on the bare wall                  */
};

class Module
{
public:
    virtual ~Module() = default;

    /**
     * The library is up and the layout on the screen; the cameras do not run yet.
     * @return false = the wall ends with what was given to WallControl::end; stop() follows.
     */
    virtual bool start(WallControl &wall) = 0;

    /** A camera's next picture, just before the decoder gets it. The camera's thread. */
    virtual void on_unit(int /*channel*/, const AccessUnit & /*unit*/, const StreamFacts & /*facts*/) {}

    /** 40 ms of a camera's sound, when FeedOptions asks for it. The camera's thread. */
    virtual void on_audio(int /*channel*/, const SoundBlock & /*block*/) {}

    /** A camera's sound as it sends it, when FeedOptions asks for sound. The camera's thread. */
    virtual void on_sound_packet(int /*channel*/, const SoundPacket & /*packet*/) {}

    /** @return when the next turn is wanted at the latest; time_point::max() = only when woken. */
    virtual Clock::time_point take_turn(Clock::time_point /*now*/) { return Clock::time_point::max(); }

    /** The panes are about to change: layout() and enlarged() tell how. Every pane's decoder is flushed. */
    virtual void before_layout() {}

    /** The panes or the selection have changed. */
    virtual void on_layout() {}

    /** The cameras have stopped and their decoders are empty: the pictures of the end are taken next. */
    virtual void before_last_pictures() {}

    /** Width and height of the picture that it shows on a channel instead of the camera's; zeros = none. */
    virtual std::pair<uint32_t, uint32_t> picture_size(int /*channel*/) const { return {0, 0}; }

    /**
     * A channel has another camera, another connection to its camera, or none: nothing more comes from the
     * one before.
     */
    virtual void on_camera_changed(int /*channel*/) {}

    /** Behind that: it is another camera that stands there now, or none. What was known is not true of it. */
    virtual void on_camera_replaced(int /*channel*/) {}

    /**
     * A user at the screen wants to end while something records. @return true = this module asks the user.
     */
    virtual bool ask_whether_to_end() { return false; }

    /** Its place among the modules that take keys and mouse events; asked for each event. */
    virtual InputLayer input_layer() const { return InputLayer::kTools; }

    /** @return true = the key or the event was meant for this one. */
    virtual bool on_key(Key /*key*/) { return false; }
    virtual bool on_pointer(const PointerEvent & /*event*/) { return false; }

    /** True = the wall goes on even when no camera runs any more. */
    virtual bool busy() const { return false; }

    /** A text for the progress line instead of the cameras' counts; empty = the counts. */
    virtual std::string progress(double /*seconds*/) const { return {}; }

    /** The cameras have ended; the library is still up. */
    virtual void stop() {}

    /** After the closing table. */
    virtual void report() {}

    /** A member of the object that --json writes, `"name": value`; empty = none. */
    virtual std::string json() const { return {}; }
};

} // namespace nvrec
