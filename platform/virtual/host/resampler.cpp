/* resampler.cpp - libswresample behind resampler.h. */
#include "host/resampler.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

namespace vboard
{
namespace
{

// Silence put in first fills the filter, so that the first block comes out whole and nothing of an
// older sound with it. Longer than the filter is at any rate here.
constexpr size_t kPrimingSamples = 1024;
constexpr size_t kSpareSamples = 64; // more than one block's share of the filter's rounding

struct SwrDelete {
    void operator()(SwrContext *context) const { swr_free(&context); }
};
using SwrPtr = std::unique_ptr<SwrContext, SwrDelete>;

SwrPtr open_converter(uint32_t from_hz, uint32_t to_hz)
{
    AVChannelLayout mono;
    av_channel_layout_default(&mono, 1);
    SwrContext *context = nullptr;
    swr_alloc_set_opts2(&context, &mono, AV_SAMPLE_FMT_FLT, static_cast<int>(to_hz), &mono, AV_SAMPLE_FMT_S16,
                        static_cast<int>(from_hz), 0, nullptr);
    SwrPtr converter(context);
    if (converter == nullptr || swr_init(converter.get()) < 0) return nullptr;
    return converter;
}

class SwrResampler final : public Resampler
{
public:
    SwrResampler(SwrPtr converter, uint32_t from_hz, uint32_t to_hz)
        : converter_(std::move(converter)), from_hz_(from_hz), to_hz_(to_hz)
    {
    }

    bool convert(const int16_t *samples, size_t count, std::vector<float> &out) override
    {
        const size_t have = out.size();
        const size_t most = count * to_hz_ / from_hz_ + kSpareSamples;
        out.resize(have + most);
        auto *to = reinterpret_cast<uint8_t *>(out.data() + have);
        const auto *from = reinterpret_cast<const uint8_t *>(samples);
        const int got =
            swr_convert(converter_.get(), &to, static_cast<int>(most), &from, static_cast<int>(count));
        out.resize(have + static_cast<size_t>(got > 0 ? got : 0));
        return got >= 0;
    }

    bool restart() override
    {
        const std::vector<int16_t> silence(kPrimingSamples);
        std::vector<float> unheard;
        return convert(silence.data(), silence.size(), unheard);
    }

private:
    SwrPtr converter_;
    uint32_t from_hz_, to_hz_;
};

} // namespace

std::unique_ptr<Resampler> Resampler::create(uint32_t from_hz, uint32_t to_hz)
{
    if (from_hz == 0 || to_hz == 0) return nullptr;
    SwrPtr converter = open_converter(from_hz, to_hz);
    if (converter == nullptr) return nullptr;
    auto resampler = std::make_unique<SwrResampler>(std::move(converter), from_hz, to_hz);
    if (!resampler->restart()) return nullptr;
    return resampler;
}

} // namespace vboard
