/*
 * config.h - what one configuration file says: plain data, checked as a whole by read.h.
 *
 * It names no type of another room; commands/run_command.cpp fills their options from it. Every member begins
 * with its default, which holds when the file does not have the key. docs/nvrec.toml shows every key.
 *
 * Threads: a value, to be read on any.
 */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nvrec::config
{

enum class RecordMode { kAlways, kHours, kEvent, kNever };
enum class Transport { kAuto, kTcp, kUdp };
enum class Aspect { kFit, kStretch };
enum class Kind { kMp4, kMkv };
enum class Wanted { kAuto, kOn, kOff };
enum class Level { kError, kWarning, kInfo, kDebug };

/** A part of the week: from one minute up to, and without, another on each of these days. */
struct Hours {
    uint8_t days = 0x7f; /* bit 0 = Monday                                                     */
    int from_min = 0;    /* minutes after local midnight, 0 to 1439                            */
    int to_min = 1440;   /* 1 to 1440; not after from_min = it goes on to that time of the next day */
    bool operator==(const Hours &) const = default;
};

/** When a camera is recorded. */
struct Plan {
    RecordMode mode = RecordMode::kAlways;
    std::vector<Hours> hours; /* of kHours                                    */
    double before_s = 5;      /* of kEvent: kept from before an event         */
    double after_s = 20;      /* of kEvent: recorded after the last one       */
    bool on_alarm = true;     /* the camera's alarm input is an event         */
    bool on_motion = true;    /* motion on the camera's analog input is one   */
    bool operator==(const Plan &) const = default;
};

struct Camera {
    std::string name;
    std::string main; /* address, without what user and password say */
    std::string sub;  /* of the smaller stream; empty = there is none */
    std::string user, password;
    Transport transport = Transport::kAuto;
    Aspect aspect = Aspect::kFit;
    bool measured_link = false; /* link = "measured" */
    int link_quality = 0;       /* link = a number, 1 to 100; 0 = nothing is said */
    bool sound = true;          /* is recorded with the pictures */
    bool loop = false;          /* a file is begun again at its end */
    Plan plan;
    int line = 0;      /* where the file speaks of it; tells nothing of the camera */
    int main_line = 0; /* likewise, of `main` */

    /** Compares all members but the lines. */
    bool same_as(const Camera &other) const;
};

struct Screen {
    std::string output = "1920x1080";
    std::string layout = "auto";
    Wanted window = Wanted::kAuto;
    Wanted overlay = Wanted::kAuto;
    std::string language; /* "en", "zh"; empty = the locale's */
    bool traditional = false;
    std::string font;              /* path; empty = the system's */
    std::string snapshots = "out"; /* directory */
    bool operator==(const Screen &) const = default;
};

struct Record {
    std::string directory; /* empty = nothing is recorded */
    Kind format = Kind::kMp4;
    int segment_s = 3600;
    bool operator==(const Record &) const = default;
};

/** Zeros = no limit. */
struct Retention {
    int64_t size_bytes = 0; /* all recordings together         */
    int64_t age_s = 0;      /* the oldest                      */
    int64_t free_bytes = 0; /* left for others on the disk     */
    bool operator==(const Retention &) const = default;
};

struct Sound {
    std::string camera; /* whose sound is heard; empty = none's */
    std::string wav;    /* path; empty = the sound card         */
    bool operator==(const Sound &) const = default;
};

struct Board {
    int channels = 0; /* that it is started for; 0 = as many as there are cameras */
    int watchdog_s = 100;
    double hung_after_s = 10;
    bool operator==(const Board &) const = default;
};

struct Control {
    std::string socket; /* path; empty = the user's own place, "none" = no socket */
    bool operator==(const Control &) const = default;
};

/** The page with the measurements. */
struct Status {
    std::string page;  /* "ADDRESS:PORT"; empty = there is none                              */
    std::string token; /* that readers of the page must send; empty = none, on loopback only */
    bool qr = false;   /* page and token stand on the screen as a QR code                    */
    bool operator==(const Status &) const = default;
};

struct Log {
    std::string file = "out/nvrec.log";
    Level level = Level::kInfo;
    int64_t size_bytes = 10'000'000; /* after so many the next file is begun */
    int keep = 4;                    /* of the files before it               */
    bool operator==(const Log &) const = default;
};

struct Config {
    std::string path; /* of the file it was read from */
    std::vector<Camera> cameras;
    Screen screen;
    Record record;
    Retention retention;
    Sound sound;
    Board board;
    Control control;
    Status status;
    Log log;

    /** Channels that the board is started for. */
    int channels() const { return board.channels > 0 ? board.channels : static_cast<int>(cameras.size()); }

    /** The channel of the camera of that name; -1 = none has it. */
    int channel_of(const std::string &name) const;
};

} // namespace nvrec::config
