/*
 * Texts with the system's reason, of the framebuffer and of BMP files: without a function of the
 * application the bytes on standard error are perror's, with one it gets them.
 */
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gui_bmp_file.h"
#include "gui_screen.h"

using gui_test::plug_framebuffer;
using recording::platform;

namespace
{

constexpr char kFramebuffer[] = "/dev/fb0";
constexpr char kExitText[] = "Error reading variable information";

/** The bytes on standard error of what `print` does. */
template <typename Print> std::string on_standard_error(Print print)
{
    testing::internal::CaptureStderr();
    print();
    return testing::internal::GetCapturedStderr();
}

std::string as_perror_prints(const char *text, int error)
{
    return on_standard_error([&] {
        errno = error;
        std::perror(text);
    });
}

/** The how-many-th such request fails for this reason. */
void refuse_request(unsigned long request, unsigned nth, int error)
{
    plug_framebuffer();
    platform.node(kFramebuffer).ioctl(request).nth(nth).fills([error](recording::Args &call) {
        call.result = -1;
        errno = error;
    });
}

int32_t load_a_file_without_pixels(bool converted, int error)
{
    gui_test::BmpFile bitmap = gui_test::test_bitmap(4, 2, 24);
    bitmap.pixels.clear();
    const gui_test::FileOnDisk file(bitmap);
    gui_test::Surface surface(64);
    errno = error; // nothing fails in a file that ends early: the reason is an older one
    return converted ? LoadBMPEx(file.path(), &surface.record, 3) : LoadBMP(file.path(), &surface.record);
}

struct Place {
    const char *name;
    const char *text;
    int32_t result;
    int32_t (*fail)(int error);
};

void PrintTo(const Place &place, std::ostream *out)
{
    *out << place.name;
}

const Place kPlaces[] = {
    {"ReadingTheLayer", "BBBBBBBBBBBBBBBBBBBBBBBBBBBBBBError: failed to FBIOGET_DISPLAYLAYER_ATTRIBUTES", -1,
     [](int error) {
         refuse_request(FBIOGET_DISPLAYLAYER_ATTRIBUTES, 1, error);
         return fb_init(0, 1280, 720);
     }},
    {"WritingTheFormat", "Error: failed to FBIOSET_DISPLAYLAYER_ATTRIBUTES", -1,
     [](int error) {
         refuse_request(FBIOSET_DISPLAYLAYER_ATTRIBUTES, 2, error);
         return fb_init(0, 1280, 720);
     }},
    {"LoadingAFile", "fread:", 0, [](int error) { return load_a_file_without_pixels(false, error); }},
    {"LoadingAndConvertingAFile", "fread:", 0,
     [](int error) { return load_a_file_without_pixels(true, error); }},
};

class SystemsReason : public testing::TestWithParam<Place>
{
protected:
    void TearDown() override { nvrhal_set_log(nullptr, nullptr); }
};

TEST_P(SystemsReason, GoesToStandardErrorAsPerrorWritesIt)
{
    const Place &place = GetParam();
    for (const int error : {EACCES, EIO, 0, 4711}) {
        const std::string expected = as_perror_prints(place.text, error);
        EXPECT_EQ(on_standard_error([&] {
                      EXPECT_EQ(place.fail(error), place.result);
                      EXPECT_EQ(errno, error);
                  }),
                  expected);
    }
    EXPECT_EQ(recording::printed_text().find(place.text), std::string::npos);
}

TEST_P(SystemsReason, GoesToTheFunctionOfTheApplicationAlone)
{
    const Place &place = GetParam();
    const std::string expected = as_perror_prints(place.text, EACCES);
    std::vector<std::string> texts;
    nvrhal_set_log(
        [](const char *text, size_t length, void *user) {
            static_cast<std::vector<std::string> *>(user)->emplace_back(text, length);
            errno = ENOSPC; // a log of the application's own has failures of its own
        },
        &texts);
    EXPECT_EQ(on_standard_error([&] {
                  EXPECT_EQ(place.fail(EACCES), place.result);
                  EXPECT_EQ(errno, EACCES);
              }),
              "");
    nvrhal_set_log(nullptr, nullptr);
    ASSERT_FALSE(texts.empty());
    EXPECT_EQ(texts.back(), expected);
    EXPECT_EQ(recording::printed_text(), "");
}

INSTANTIATE_TEST_SUITE_P(Places, SystemsReason, testing::ValuesIn(kPlaces),
                         [](const auto &tested) { return tested.param.name; });

TEST(SystemsReasonUnheard, LeavesTheReasonAsItIs)
{
    const int standard_error = dup(STDERR_FILENO);
    const int full = open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    dup2(full, STDERR_FILENO);
    EXPECT_EQ(load_a_file_without_pixels(false, EACCES), 0);
    const int seen = errno;
    dup2(standard_error, STDERR_FILENO);
    close(full);
    close(standard_error);
    EXPECT_EQ(seen, EACCES);
}

TEST(SystemsReasonAtTheEnd, OfTheProcessIsWrittenAsPerrorWritesIt)
{
    const std::string expected = as_perror_prints(kExitText, EACCES);
    refuse_request(FBIOGET_VSCREENINFO, 3, EACCES);
    EXPECT_EXIT(fb_init(0, 1280, 720), testing::ExitedWithCode(0), testing::Eq(expected));
}

TEST(SystemsReasonAtTheEnd, OfTheProcessGoesToTheFunctionOfTheApplication)
{
    const std::string expected = as_perror_prints(kExitText, EACCES);
    refuse_request(FBIOGET_VSCREENINFO, 3, EACCES);
    EXPECT_EXIT(
        {
            nvrhal_set_log(
                [](const char *text, size_t length, void *) {
                    if (std::string(text, length).rfind(kExitText, 0) == 0)
                        std::fprintf(stderr, "the function got: %s", text);
                },
                nullptr);
            fb_init(0, 1280, 720);
        },
        testing::ExitedWithCode(0), testing::Eq("the function got: " + expected));
}

} // namespace
