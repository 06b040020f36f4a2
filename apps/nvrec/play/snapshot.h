/*
 * snapshot.h - JPEG pictures of single channels: shown, hidden, and while recordings play.
 *
 *   the library's size    the next picture, by the library's scaler and encoder
 *   the camera's own size its last key frame, decoded beside the board (key_pictures.h)
 *
 * A key writes both, the second one beside the first with its size in its name.
 *
 * The library takes the next picture that the camera sends. A decoder that was idle before (a hidden channel,
 * the spare one during playback) needs a key frame first, which may take longer than the 2.5 s that the
 * library waits. Then the library is asked again.
 *
 * Threads: main thread.
 */
#pragma once

#include <chrono>
#include <string>

#include "play/key_pictures.h"
#include "wall/module.h"

namespace nvrec
{

enum class SnapshotSize {
    kLibrary /* NVRHAL_SNAPSHOT_WIDTH x NVRHAL_SNAPSHOT_HEIGHT */,
    kCamera /* as the camera sends it */
};

class Snapshots final : public Module
{
public:
    /** @param directory  where pictures that a key asks for go; made when it is missing */
    explicit Snapshots(std::string directory) : directory_(std::move(directory)) {}

    bool start(WallControl &wall) override;
    void on_unit(int channel, const AccessUnit &unit, const StreamFacts &facts) override;
    bool on_key(Key key) override;

    /**
     * Take one into the directory, named for the channel and the time, and tell where it is.
     * @return an ExitCode.
     */
    int take(int channel);

    /** Take one into a file. @param patience  for a key frame. @return an ExitCode. */
    int take(int channel, const std::string &path, std::chrono::milliseconds patience,
             SnapshotSize size = SnapshotSize::kLibrary);

private:
    int fail(int exit_code, const std::string &line);
    int complain_of(int channel);
    int take_in_own_size(int channel, const std::string &path, std::chrono::milliseconds patience);
    void match_spare_decoder(int channel);

    const std::string directory_;
    KeyPictures keys_;
    WallControl *wall_ = nullptr;
};

} // namespace nvrec
