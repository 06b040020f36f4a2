/*
 * listen.h - one camera's sound on the loudspeaker, or in a WAV file.
 *
 *   camera's thread -> queue of two seconds -> thread of its own -> ext_send_stream, which waits for
 *   the audio output and so paces the thread
 *
 * When the queue is full its oldest block goes: what is heard stays close to what is seen. The keys
 * for mute and volume are meant for it.
 *
 * Threads: main; on_audio() on the camera's; a thread of its own plays.
 */
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include "host/clock.h"
#include "wall/module.h"

namespace nvrec
{

struct ListenOptions {
    int channel = -1;     /* -1 = to none                                   */
    std::string wav_path; /* empty = the sound card, if there is one         */
};

class Listener final : public Module
{
public:
    explicit Listener(ListenOptions options);
    ~Listener() override;

    bool start(WallControl &wall) override;
    void on_audio(int channel, const SoundBlock &block) override;
    bool on_key(Key key) override;
    void stop() override;
    void report() override;

private:
    void open_sink();
    void run();
    bool next(SoundBlock *block);
    void play(const SoundBlock &block);
    void finish();
    void set_volume(int volume);

    const ListenOptions options_;
    WallControl *wall_ = nullptr;
    bool sink_open_ = false;
    bool muted_ = false;
    int volume_;
    std::thread thread_;

    std::mutex lock_; /* guards what follows */
    Condition changed_;
    std::deque<SoundBlock> queue_;
    bool ended_ = false;
    uint64_t played_ = 0;
    uint64_t dropped_ = 0;
};

} // namespace nvrec
