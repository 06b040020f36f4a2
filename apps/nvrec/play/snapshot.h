/*
 * snapshot.h - JPEG pictures of single channels, 352 x 288: shown, hidden, and while recordings play.
 *
 * The library takes the next picture that the camera sends. A decoder that had nothing to do before
 * (a hidden channel, the spare one during playback) waits for a key frame, which may be longer than
 * the 2.5 s the library waits: it is asked again then.
 *
 * Threads: main thread.
 */
#pragma once

#include <chrono>
#include <string>

#include "wall/module.h"

namespace nvrec
{

class Snapshots final : public Module
{
public:
    /** @param directory  where pictures that a key asks for go; made when it is missing */
    explicit Snapshots(std::string directory) : directory_(std::move(directory)) {}

    bool start(WallControl &wall) override;
    bool on_key(Key key) override;

    /**
     * Take one into the directory, named for the channel and the time, and tell where it is.
     * @return an ExitCode.
     */
    int take(int channel);

    /** Take one into a file. @param patience  for a key frame. @return an ExitCode. */
    int take(int channel, const std::string &path, std::chrono::milliseconds patience);

private:
    int fail(int exit_code, const std::string &line);
    void match_spare_decoder(int channel);

    const std::string directory_;
    WallControl *wall_ = nullptr;
};

} // namespace nvrec
