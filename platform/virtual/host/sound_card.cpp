/* sound_card.cpp - SDL2's audio device behind sound_card.h. */
#include "host/sound_card.h"

#include <SDL.h>

#include <algorithm>
#include <deque>
#include <mutex>

namespace vboard
{
namespace
{

constexpr uint32_t kStartLevel_ms = 60;
constexpr uint32_t kHighestLevel_ms = 500;
constexpr uint16_t kCardPeriod_samples = 512;
constexpr int kMostWaits = 8; // calls that a short sound, below the start level, waits for more

class SoundCard final : public SoundSink
{
public:
    SoundCard(uint32_t rate_hz, std::function<void()> render_due)
        : start_level_(size_t{rate_hz} * kStartLevel_ms / 1000),
          highest_level_(size_t{rate_hz} * kHighestLevel_ms / 1000), render_due_(std::move(render_due))
    {
    }

    ~SoundCard() override
    {
        if (device_ != 0) SDL_CloseAudioDevice(device_); // waits for a running call
        if (initialised_) SDL_QuitSubSystem(SDL_INIT_AUDIO);
    }

    bool open(uint32_t rate_hz)
    {
        initialised_ = SDL_InitSubSystem(SDL_INIT_AUDIO) == 0;
        if (!initialised_) return false;
        SDL_AudioSpec wanted = {};
        wanted.freq = static_cast<int>(rate_hz);
        wanted.format = AUDIO_S16SYS;
        wanted.channels = 1;
        wanted.samples = kCardPeriod_samples;
        wanted.callback = [](void *user, Uint8 *bytes, int size) {
            static_cast<SoundCard *>(user)->fill(reinterpret_cast<int16_t *>(bytes),
                                                 static_cast<size_t>(size) / sizeof(int16_t));
        };
        wanted.userdata = this;
        device_ = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0); // SDL converts to what the card can
        if (device_ == 0) return false;
        SDL_PauseAudioDevice(device_, 0);
        return true;
    }

    bool play(const int16_t *samples, size_t count) override
    {
        const std::lock_guard guard(mutex_);
        waiting_.insert(waiting_.end(), samples, samples + count);
        if (waiting_.size() > highest_level_) {
            const size_t late = waiting_.size() - start_level_;
            waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(late));
        }
        return true;
    }

private:
    void fill(int16_t *samples, size_t count)
    {
        render_due_();
        const std::lock_guard guard(mutex_);
        std::fill_n(samples, count, int16_t{0});
        if (!flowing_) {
            if (waiting_.empty()) return;
            flowing_ = waiting_.size() >= start_level_ || ++waits_ >= kMostWaits;
            if (!flowing_) return;
        }
        const size_t have = std::min(count, waiting_.size());
        const auto end = waiting_.begin() + static_cast<std::ptrdiff_t>(have);
        std::copy(waiting_.begin(), end, samples);
        waiting_.erase(waiting_.begin(), end);
        flowing_ = have == count;
        waits_ = 0;
    }

    const size_t start_level_, highest_level_; // samples
    const std::function<void()> render_due_;
    bool initialised_ = false;
    SDL_AudioDeviceID device_ = 0;

    std::mutex mutex_; // guards what follows
    std::deque<int16_t> waiting_;
    bool flowing_ = false;
    int waits_ = 0;
};

} // namespace

std::unique_ptr<SoundSink> open_sound_card(uint32_t rate_hz, std::function<void()> render_due)
{
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetMainReady();
    auto card = std::make_unique<SoundCard>(rate_hz, std::move(render_due));
    if (!card->open(rate_hz)) return nullptr;
    return card;
}

} // namespace vboard
