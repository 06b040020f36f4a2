/* The WAV file, looked at by ffprobe and sox, and the sound card. */
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>

#include "audio_speaker.h"
#include "nvrec_run.h"

using namespace speaker;

namespace
{

/* What a tool prints; a missing one is a failed test that says so. */
std::string output_of(const std::vector<std::string> &command)
{
    Process tool(command);
    const int status = tool.wait();
    EXPECT_NE(status, 127) << command[0] << " is not installed: tools/setup/install.sh test";
    EXPECT_EQ(status, 0) << command[0] << ": " << tool.errors;
    return tool.output + tool.errors; // sox reports on the latter
}

double samples_in(const std::string &path)
{
    return std::atof(output_of({"soxi", "-s", path}).c_str());
}

/* The number behind a label. */
double number_after(const std::string &text, const std::string &label)
{
    const size_t at = text.find(label);
    if (at == std::string::npos) {
        ADD_FAILURE() << "no \"" << label << "\" in\n" << text;
        return -1;
    }
    return std::atof(text.c_str() + at + label.size());
}

tone::Bytes file_bytes(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class SoundFile : public Speaker
{
protected:
    void SetUp() override
    {
        Speaker::SetUp();
        path_ = directory_.file("sound.wav");
    }
    ScratchDirectory directory_;
    std::string path_;
};

TEST_F(SoundFile, HoldsExactlyTheFramesSentAsOtherToolsSeeIt)
{
    constexpr uint32_t kFrames = 50;
    ASSERT_EQ(ext_set_audio_output_volume(50), 0);
    ASSERT_EQ(vboard_audio_open_wav(kDevice, path_.c_str()), 0);
    const tone::Bytes sound = tone::sine(1000, 20000, size_t{kFrames} * kFrameBytes);
    say(sound);
    play_out();
    ASSERT_EQ(vboard_audio_close(kDevice), 0);

    const std::string probe =
        output_of({"ffprobe", "-v", "error", "-of", "default=noprint_wrappers=1", "-show_entries",
                   "stream=codec_name,sample_rate,channels,bits_per_sample,duration_ts", path_});
    EXPECT_NE(probe.find("codec_name=pcm_s16le\n"), std::string::npos) << probe;
    EXPECT_EQ(number_after(probe, "sample_rate="), 48000);
    EXPECT_EQ(number_after(probe, "channels="), 1);
    EXPECT_EQ(number_after(probe, "bits_per_sample="), 16);
    EXPECT_EQ(number_after(probe, "duration_ts="), kFrames * kFrameSamples);

    EXPECT_EQ(samples_in(path_), kFrames * kFrameSamples);
    const std::string seen = output_of({"sox", path_, "-n", "stat"});
    EXPECT_NEAR(number_after(seen, "Rough   frequency:"), 1000, 5);
    const double sent = tone::rms(tone::expanded(sound)) / 32768;
    EXPECT_NEAR(tone::decibels(number_after(seen, "RMS     amplitude:") / sent), -15, 0.5);

    tone::Samples written(kFrames * kFrameSamples);
    const tone::Bytes bytes = file_bytes(path_);
    ASSERT_EQ(bytes.size(), 44 + 2 * written.size());
    for (size_t i = 0; i < written.size(); ++i)
        written[i] = static_cast<int16_t>(bytes[44 + 2 * i] | bytes[45 + 2 * i] << 8);
    EXPECT_EQ(written, heard());
}

/* A recorder that is killed leaves a file that opens. */
TEST_F(SoundFile, CanBeReadWhileItIsWritten)
{
    ASSERT_EQ(vboard_audio_open_wav(kDevice, path_.c_str()), 0);
    EXPECT_EQ(samples_in(path_), 0);
    say(tone::sine(1000, 20000, 4 * kFrameBytes));
    ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
    EXPECT_EQ(stat().played, kFrameSamples);
    EXPECT_EQ(samples_in(path_), kFrameSamples);
}

TEST_F(SoundFile, HoldsWhatIsPlayedWhileItIsOpenAndNoPauses)
{
    say(tone::sine(1000, 20000, 2 * kFrameBytes));
    ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
    ASSERT_EQ(vboard_audio_open_wav(kDevice, path_.c_str()), 0);
    play_out();
    ASSERT_EQ(vboard_clock_step_us(5000000), 0);
    say(tone::sine(1000, 20000, 3 * kFrameBytes));
    ASSERT_EQ(vboard_clock_step_us(2 * kFrame_us), 0);
    ASSERT_EQ(vboard_audio_close(kDevice), 0);
    play_out();
    EXPECT_EQ(file_bytes(path_).size(), 44 + 2 * size_t{3 * kFrameSamples});
}

TEST_F(SoundFile, IsClosedWithTheBoard)
{
    ASSERT_EQ(vboard_audio_open_wav(kDevice, path_.c_str()), 0);
    say(tone::sine(1000, 20000, kFrameBytes));
    ASSERT_EQ(vboard_clock_step_us(kFrame_us), 0);
    vboard_reset();
    EXPECT_EQ(file_bytes(path_).size(), 44 + 2 * size_t{kFrameSamples});
    ASSERT_EQ(audio_init(), 0);
    EXPECT_EQ(vboard_audio_open_wav(kDevice, path_.c_str()), 0) << "no sink is left open";
}

TEST_F(SoundFile, IsRefusedWhenItCannotBeWrittenOrAnotherIsOpen)
{
    vboard_set_loud(0);
    EXPECT_EQ(vboard_audio_open_wav(kDevice, nullptr), -1);
    EXPECT_EQ(vboard_audio_open_wav(kDevice, "/nonexistent/sound.wav"), -1);
    EXPECT_EQ(vboard_audio_open_wav(kDevice, "/"), -1);
    ASSERT_EQ(vboard_audio_open_wav(kDevice, path_.c_str()), 0);
    EXPECT_EQ(vboard_audio_open_wav(kDevice, path_.c_str()), -1);
    EXPECT_EQ(vboard_audio_open_sound(kDevice), -1);
    EXPECT_EQ(vboard_audio_close(kDevice), 0);
    EXPECT_EQ(vboard_audio_close(kDevice), 0) << "closing none is accepted";
}

TEST_F(SoundFile, IsRefusedOnAFullDisk)
{
    struct stat full;
    ASSERT_EQ(::stat("/dev/full", &full), 0) << "this system has no /dev/full";
    vboard_set_loud(0);
    EXPECT_EQ(vboard_audio_open_wav(kDevice, "/dev/full"), -1) << "not even the header fits";
}

/* A disk that fills up ends the file, which can still be read, and not the sound. */
TEST_F(SoundFile, EndsWhereTheDiskIsFull)
{
    const rlimit small = {10000, 10000};
    signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    vboard_set_loud(0);
    ASSERT_EQ(vboard_audio_open_wav(kDevice, path_.c_str()), 0);
    for (int i = 0; i < 4; ++i) {
        say(tone::sine(1000, 20000, kFrameBytes));
        play_out();
    }
    EXPECT_EQ(stat().played, 4 * kFrameSamples);
    EXPECT_EQ(samples_in(path_), 2 * kFrameSamples) << "the frames that fitted whole";
    EXPECT_EQ(vboard_audio_open_wav(kDevice, path_.c_str()), 0) << "the full one is closed";
}

/* SDL's disk driver takes the place of the card: what it was given lies in a file of raw samples. */
TEST_F(SoundFile, GoesToTheSoundCardWhole)
{
    constexpr uint32_t kTone = 15;
    constexpr uint32_t kSilence = 20; // longer than the card is ever behind
    setenv("SDL_AUDIODRIVER", "disk", 1);
    setenv("SDL_DISKAUDIOFILE", path_.c_str(), 1);
    setenv("SDL_DISKAUDIODELAY", "11", 1); // ms for 512 samples
    const tone::Bytes silence(kFrameBytes, tone::compress(0));
    vboard_clock_release();
    ASSERT_EQ(vboard_audio_open_sound(kDevice), 0);
    for (uint32_t i = 0; i < kTone; ++i)
        ASSERT_EQ(send_block(block_of(tone::sine(1013, 20000, kFrameBytes, size_t{i} * kFrameBytes))), 0);
    for (uint32_t i = 0; i < kSilence; ++i)
        ASSERT_EQ(send_block(block_of(silence)), 0);
    ASSERT_EQ(vboard_audio_wait_played(kDevice, rig::kPatience_ms), 0);
    const tone::Samples played = heard();
    ASSERT_EQ(vboard_audio_close(kDevice), 0);

    const tone::Bytes bytes = file_bytes(path_);
    tone::Samples card(bytes.size() / 2);
    for (size_t i = 0; i < card.size(); ++i)
        card[i] = static_cast<int16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
    const auto first = played.begin() + 480; // 10 ms: the filter has settled
    const auto last = played.begin() + kTone * kFrameSamples;
    EXPECT_NE(std::search(card.begin(), card.end(), first, last), card.end())
        << "the tone is there in one piece, among " << card.size() << " samples";
}

TEST_F(SoundFile, FindsNoSoundCardWhereThereIsNone)
{
    setenv("SDL_AUDIODRIVER", "nonesuch", 1);
    vboard_set_loud(0);
    EXPECT_EQ(vboard_audio_open_sound(kDevice), -1);
    EXPECT_NE(rig::last_refusal().find("this PC has no sound card"), std::string::npos);
    EXPECT_EQ(vboard_audio_open_wav(kDevice, path_.c_str()), 0);
}

} // namespace
