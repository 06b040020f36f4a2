/* Every entry at once, from many threads: for the sanitizers, and for nothing to hang. */
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

#include "audio_speaker.h"

using namespace speaker;

namespace
{

/* Run the senders to their end, everything else as often as it can meanwhile, and step the clock. */
void run_together(const std::vector<std::function<void()>> &senders,
                  const std::vector<std::function<void(unsigned)>> &others)
{
    std::atomic<size_t> sending{senders.size()};
    std::vector<std::thread> threads;
    for (const auto &send : senders)
        threads.emplace_back([&] {
            send();
            --sending;
        });
    for (const auto &act : others)
        threads.emplace_back([&] {
            for (unsigned i = 0; sending > 0; ++i)
                act(i);
        });
    while (sending > 0)
        if (vboard_clock_wait_sleepers(1, 20) == 0) vboard_clock_step_us(10000);
    for (std::thread &thread : threads)
        thread.join();
}

TEST_F(Speaker, StandsEveryCallAtOnce)
{
    constexpr uint32_t kBlocks = 40;
    const tone::Bytes block = block_of(tone::sine(1000, 10000, kFrameBytes));
    const auto send = [&] {
        for (uint32_t i = 0; i < kBlocks; ++i)
            EXPECT_EQ(send_block(block), 0);
    };
    const std::string path = testing::TempDir() + "vboard_audio_threads_" + std::to_string(getpid()) + ".wav";
    run_together({send, send},
                 {
                     [](unsigned i) { ext_set_audio_output_volume(i % 101); },
                     [](unsigned i) { ext_set_audio_live_channel(i % 2 == 0, 0); },
                     [](unsigned) {
                         vboard_audio_level level;
                         EXPECT_EQ(vboard_audio_get_level(kDevice, 100, &level), 0);
                         tone::Samples samples(480);
                         EXPECT_GE(vboard_audio_read(kDevice, stat().played, samples.data(), 480), 0);
                     },
                     [&](unsigned) {
                         EXPECT_EQ(vboard_audio_open_wav(kDevice, path.c_str()), 0);
                         EXPECT_EQ(vboard_audio_close(kDevice), 0);
                     },
                 });
    unlink(path.c_str());
    play_out();
    EXPECT_EQ(stat().blocks, 2 * kBlocks);
    EXPECT_EQ(stat().played, 2ull * kBlocks * kFrameSamples);
}

/* The sound card's thread comes in whenever it likes, also while the card is being closed. */
TEST_F(Speaker, OpensAndClosesTheSoundCardWhileSoundPlays)
{
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    vboard_clock_release();
    const tone::Bytes block = block_of(tone::sine(1000, 10000, kFrameBytes));
    std::thread sender([&] {
        for (int i = 0; i < 15; ++i)
            EXPECT_EQ(send_block(block), 0);
    });
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(vboard_audio_open_sound(kDevice), 0);
        EXPECT_EQ(vboard_audio_close(kDevice), 0);
    }
    EXPECT_EQ(vboard_audio_open_sound(kDevice), 0);
    sender.join();
    EXPECT_EQ(vboard_audio_wait_played(kDevice, rig::kPatience_ms), 0);
    EXPECT_EQ(stat().played, 15u * kFrameSamples);
}

} // namespace
