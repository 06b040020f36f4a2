/* snapshot.cpp - see snapshot.h. */
#include "play/snapshot.h"

#include <ctime>
#include <filesystem>

#include "camera/decoder_codec.h"
#include "console/exit_code.h"
#include "console/terminal.h"
#include "host/clock.h"
#include "nvrhal.h"
#include "wall/jpeg.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr auto kKeyPatience = std::chrono::milliseconds(5000);

/* "channel3-20240131-174502.250.jpg", local time; sorts by time. */
std::string file_name(int channel, WallTime now)
{
    const auto since_1970 = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
    const std::time_t seconds = since_1970.count() / 1000;
    std::tm parts = {};
    localtime_r(&seconds, &parts);
    char day_and_time[32];
    std::strftime(day_and_time, sizeof day_and_time, "%Y%m%d-%H%M%S", &parts);
    char name[64];
    std::snprintf(name, sizeof name, "channel%d-%s.%03d.jpg", channel, day_and_time,
                  static_cast<int>(since_1970.count() % 1000));
    return name;
}

} // namespace

bool Snapshots::start(WallControl &wall)
{
    wall_ = &wall;
    if (ext_set_snap_channel_enable() == 0) return true;
    wall.terminal().error("the library takes no snapshots");
    wall.end(kExitBoardFailed);
    return false;
}

bool Snapshots::on_key(Key key)
{
    if (key != Key::kSnapshot) return false;
    take(wall_->enlarged() >= 0 ? wall_->enlarged() : wall_->selected());
    return true;
}

void Snapshots::on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts)
{
    keys_.note(channel, unit, facts.codec);
}

int Snapshots::take(int channel)
{
    const std::string name = file_name(channel, wall_time());
    const std::filesystem::path path = std::filesystem::path(directory_) / name;
    const int result = take(channel, path.string(), kKeyPatience);
    if (result != kExitDone) return result;
    const std::string of = "snapshot of channel " + std::to_string(channel);
    wall_->terminal().print(of + ": " + path.string());

    const auto own = keys_.take(channel);
    if (!own) return kExitDone; /* the camera's codec is one that this machine does not decode */
    const std::string size = std::to_string(own->width) + "x" + std::to_string(own->height);
    const std::string beside = (path.parent_path() / (path.stem().string() + "-" + size + ".jpg")).string();
    if (!write_picture_file(beside, own->jpeg.data(), own->jpeg.size()))
        return fail(kExitOutputFailed, "cannot write " + beside);
    wall_->terminal().print(of + ", " + size + ": " + beside);
    return kExitDone;
}

int Snapshots::fail(int exit_code, const std::string &line)
{
    wall_->terminal().error("snapshot: " + line);
    return exit_code;
}

/*
 * While recordings play, the camera's picture is decoded on a spare channel, the one after the last camera's.
 */
void Snapshots::match_spare_decoder(int channel)
{
    match_decoder(wall_->session().channels(), wall_->cameras()[static_cast<size_t>(channel)]->facts().codec);
}

/* @return kExitDone = a picture can be taken */
int Snapshots::complain_of(int channel)
{
    const std::string name = "channel " + std::to_string(channel);
    const auto &cameras = wall_->cameras();
    if (channel < 0 || static_cast<size_t>(channel) >= cameras.size())
        return fail(kExitUsage, "there is no camera on " + name);
    if (!cameras[static_cast<size_t>(channel)]->opened())
        return fail(kExitInputFailed, name + " has no picture: its input is not open");
    return kExitDone;
}

int Snapshots::take(int channel, const std::string &path, std::chrono::milliseconds patience,
                    SnapshotSize size)
{
    const int complaint = complain_of(channel);
    if (complaint != kExitDone) return complaint;
    if (size == SnapshotSize::kCamera) return take_in_own_size(channel, path, patience);

    const auto give_up_at = Clock::now() + patience;
    FrameInfo frame = {};
    do {
        frame = {};
        frame.channel = static_cast<uint32_t>(channel);
        if (playback_status == 1) match_spare_decoder(channel);
        /*
         * During playback the result is that of the spare decoder; only the length tells whether there is a
         * picture.
         */
        ext_get_jpeg_stream(&frame);
    } while (frame.length == 0 && Clock::now() < give_up_at);
    if (frame.length == 0)
        return fail(kExitBoardFailed, "channel " + std::to_string(channel) + " gave no picture");

    const bool written = write_picture_file(path, frame.data, frame.length);
    ext_release_jpeg_buf(&frame);
    return written ? kExitDone : fail(kExitOutputFailed, "cannot write " + path);
}

int Snapshots::take_in_own_size(int channel, const std::string &path, std::chrono::milliseconds patience)
{
    const std::string name = "channel " + std::to_string(channel);
    if (!keys_.wait_for(channel, Clock::now() + patience))
        return fail(kExitInputFailed, name + " has sent no key frame");
    const auto picture = keys_.take(channel);
    if (!picture) return fail(kExitInputFailed, "the key frame of " + name + " cannot be decoded");
    const bool written = write_picture_file(path, picture->jpeg.data(), picture->jpeg.size());
    return written ? kExitDone : fail(kExitOutputFailed, "cannot write " + path);
}

} // namespace nvrec
