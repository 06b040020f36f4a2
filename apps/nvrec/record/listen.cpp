/* listen.cpp - see listen.h. */
#include "record/listen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "console/exit_code.h"
#include "console/terminal.h"
#include "host/host.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr size_t kMostQueued = 50; /* blocks: two seconds     */
constexpr auto kPlayOut = std::chrono::seconds(3);
constexpr int kVolumeOf0dB = 67; /* of 100, where the output stands at power-on */
constexpr int kVolumeStep = 5;

} // namespace

Listener::Listener(ListenOptions options) : options_(std::move(options)), volume_(kVolumeOf0dB) {}

Listener::~Listener()
{
    finish();
}

bool Listener::start(WallControl &wall)
{
    wall_ = &wall;
    const Feeder &camera = *wall.cameras()[static_cast<size_t>(options_.channel)];
    if (camera.opened() && !camera.facts().sound)
        wall.terminal().error(camera.label() + ": it comes without sound");
    open_sink();
    ext_set_audio_live_channel(1, options_.channel);
    thread_ = std::thread([this] { run(); });
    return true;
}

/* Without a sound card the output plays all the same, but nothing is heard. */
void Listener::open_sink()
{
    const bool to_file = !options_.wav_path.empty();
    const std::string problem = to_file ? host::open_sound_file(options_.wav_path) : host::open_loudspeaker();
    sink_open_ = problem.empty();
    if (!sink_open_) wall_->terminal().error(problem);
}

void Listener::on_audio(int channel, const SoundBlock &block)
{
    if (channel != options_.channel) return;
    const std::scoped_lock guard(lock_);
    if (ended_) return;
    if (queue_.size() >= kMostQueued) {
        queue_.pop_front();
        ++dropped_;
    }
    queue_.push_back(block);
    changed_.notify();
}

void Listener::run()
{
    SoundBlock block;
    while (next(&block))
        play(block);
}

/* The next block, or false when there will be none. */
bool Listener::next(SoundBlock *block)
{
    std::unique_lock guard(lock_);
    changed_.wait(guard, [this] { return ended_ || !queue_.empty(); });
    if (queue_.empty()) return false;
    *block = queue_.front();
    queue_.pop_front();
    ++played_;
    return true;
}

void Listener::play(const SoundBlock &block)
{
    std::array<uint8_t, NVRHAL_SOUND_HEADER_BYTES + kSoundBlock_bytes> bytes = {};
    std::copy(block.samples.begin(), block.samples.end(), bytes.begin() + NVRHAL_SOUND_HEADER_BYTES);
    FrameInfo frame = {};
    frame.media = FRAME_MEDIA_AUDIO;
    frame.length = static_cast<uint32_t>(bytes.size());
    frame.data = bytes.data();
    frame.channel = static_cast<uint32_t>(options_.channel);
    frame.pts = static_cast<uint64_t>(block.pts_us);
    ext_send_stream(&frame, 0, 0, 0);
}

bool Listener::on_key(Key key)
{
    switch (key) {
    case Key::kMute:
        muted_ = !muted_;
        ext_set_audio_live_channel(muted_ ? 0 : 1, options_.channel);
        return true;
    case Key::kVolumeUp: set_volume(volume_ + kVolumeStep); return true;
    case Key::kVolumeDown: set_volume(volume_ - kVolumeStep); return true;
    default: return false;
    }
}

void Listener::set_volume(int volume)
{
    volume_ = std::clamp(volume, 0, 100);
    ext_set_audio_output_volume(static_cast<uint32_t>(volume_));
}

void Listener::stop()
{
    finish();
    if (sink_open_) {
        host::wait_for_sound(kPlayOut);
        host::close_sound();
    } else if (!options_.wav_path.empty()) {
        wall_->end(kExitOutputFailed);
    }
    ext_set_audio_live_channel(0, options_.channel);
}

/* Let the thread play what it has, and end it. */
void Listener::finish()
{
    {
        const std::scoped_lock guard(lock_);
        ended_ = true;
        changed_.notify();
    }
    if (thread_.joinable()) thread_.join();
}

void Listener::report()
{
    const double seconds = static_cast<double>(played_) * kSoundBlock_us / 1e6;
    std::string tenths = std::to_string(std::llround(seconds * 10));
    if (tenths.size() < 2) tenths.insert(0, "0");
    tenths.insert(tenths.size() - 1, ".");
    wall_->terminal().print("sound of channel " + std::to_string(options_.channel) + ": " + tenths +
                            " s played, " + std::to_string(dropped_) + " blocks of 40 ms dropped");
}

} // namespace nvrec
