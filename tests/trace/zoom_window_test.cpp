/* ext_vidoe_image_zoom: a rectangle of the picture as the display port's zoom-in window. */
#include "view_frame.h"

using namespace view_test;
using recording::platform;
using recording::trace;

namespace
{

struct Rectangle {
    int32_t x, y, w, h;
};
struct Row {
    uint16_t picture_width, picture_height, source_width, source_height;
    Rectangle picture;
    const char *window;
};

constexpr Row kRows[] = {
    {1920, 1080, 1920, 1080, {101, 51, 641, 361}, "100,50 640x360"},
    {704, 576, 1920, 1080, {0, 0, 352, 288}, "0,0 960x540"},
    {1920, 1080, 960, 540, {960, 540, 960, 540}, "480,270 480x270"},
    {1920, 1080, 1919, 1079, {1, 1, 3, 3}, "0,0 2x2"},
    {1920, 1080, 1920, 1080, {0, 0, 0, 0}, "0,0 0x0"},
    {0, 1080, 1920, 1080, {100, 100, 200, 200}, "0,100 0x200"},
    {1920, 0, 1920, 1080, {100, 100, 200, 200}, "100,0 200x0"},
    {1920, 1080, 0, 0, {100, 100, 200, 200}, "0,0 0x0"},
    // Products wrap at 32 bits: -2 * 1920 is 4294963456, a 1920th of it 2236960, low 16 bits 8736.
    {1920, 1080, 1920, 1080, {-2, 0, 2, 2}, "8736,0 2x2"},
    // 0x40000000 * 4 wraps to 0.
    {1, 1, 4, 4, {0x40000000, 0x40000001, 1, 20000}, "0,4 4x14464"},
    // 3000000 * 1920 wraps to 1465032704, a 704th of it 2081012, low 16 bits 49396; the others alike.
    {704, 576, 1920, 1080, {3000000, 5000000, 7000000, 6000000}, "49396,17914 2058x57906"},
    {704, 576, 1920, 1080, {-2, -2, 2, 2}, "5952,50968 4x2"},
};

class ZoomWindow : public testing::TestWithParam<Row>
{
};

void PrintTo(const Row &row, std::ostream *out)
{
    *out << row.window << " of " << row.source_width << "x" << row.source_height;
}

INSTANTIATE_TEST_SUITE_P(Rectangles, ZoomWindow, testing::ValuesIn(kRows));

/** Decoder 0 for pictures of a size, and port 3 of device 0 with a source of a size. */
void give_sizes(uint16_t picture_width, uint16_t picture_height, uint16_t source_width,
                uint16_t source_height)
{
    MI_VDEC_ChnAttr picture = {};
    picture.max_width = picture_width;
    picture.max_height = picture_height;
    MI_VDEC_CreateChn(0, &picture);
    MI_DISP_InputPortAttr source = {{0, 0, 64, 64}, source_width, source_height};
    MI_DISP_SetInputPortAttr(0, 3, &source);
    zoom_channel = 3;
    platform.forget();
}

TEST_P(ZoomWindow, IsMappedIntoThePortsSource)
{
    const Row &row = GetParam();
    give_sizes(row.picture_width, row.picture_height, row.source_width, row.source_height);
    EXPECT_EQ(ext_vidoe_image_zoom(0, row.picture.x, row.picture.y, row.picture.w, row.picture.h), 0);
    EXPECT_EQ(platform.calls(), trace(std::string(R"(
        MI_VDEC_GetChnAttr 0
        MI_DISP_GetInputPortAttr 0 3
        MI_DISP_SetZoomInWindow 0 3 {)") +
                                      row.window + "}"));
}

/* The picture's size is decoder 0's, and the port device 0's, whatever is zoomed or current. */
TEST(ZoomWindow, AlwaysMeasuresDecoder0OnDevice0)
{
    give_sizes(1920, 1080, 1920, 1080);
    globalVoDev = 2;
    EXPECT_EQ(ext_vidoe_image_zoom(9, 101, 51, 641, 361), 0);
    EXPECT_EQ(platform.count("MI_VDEC_GetChnAttr 0"), 1u);
    EXPECT_EQ(platform.count("MI_DISP_SetZoomInWindow 0 3"), 1u);
    EXPECT_EQ(
        recording::printed_text().find("(int cropDivp=9, int x=101, int y=51, int w=641, int h=361)"
                                       "( int u16X=100, int u16Y=50, int u16Width=640, int u16Height=360\n)"
                                       "( zoom_channel=3\n)("),
        0u)
        << recording::printed_text();
    EXPECT_PRINTED(")(ext_vidoe_image_zoom #)exec function pass");
}

TEST(ZoomWindow, IsAskedForTwiceAndFailsWhateverTheSecondGives)
{
    for (unsigned failures : {1u, 2u}) {
        give_sizes(1920, 1080, 1920, 1080);
        platform.script("MI_DISP_SetZoomInWindow").once().returns(-3);
        if (failures == 2) platform.script("MI_DISP_SetZoomInWindow").nth(2).returns(-3);
        EXPECT_EQ(ext_vidoe_image_zoom(0, 0, 0, 64, 64), 1);
        EXPECT_EQ(platform.count("MI_DISP_SetZoomInWindow 0 3 {0,0 64x64}"), 2u);
        EXPECT_NE(recording::printed_text().find("]exec function failed\n"), std::string::npos);
        EXPECT_EQ(recording::printed_text().find("exec function pass"), std::string::npos);
    }
}

/* The text follows what was printed before it on the same line; the code is that of the last call. */
TEST(ZoomWindow, SaysWhichCodeItFailedWith)
{
    const std::string arguments = "(int cropDivp=0, int x=0, int y=0, int w=64, int h=64)";
    const struct {
        const char *call;
        std::string before;
    } rows[] = {{"MI_VDEC_GetChnAttr", arguments},
                {"MI_DISP_GetInputPortAttr", arguments},
                {"MI_DISP_SetZoomInWindow", ")"}};
    for (const auto &row : rows)
        for (int32_t code : {-3, 6}) {
            give_sizes(1920, 1080, 1920, 1080);
            platform.script(row.call).returns(code);
            EXPECT_EQ(ext_vidoe_image_zoom(0, 0, 0, 64, 64), 1);
            EXPECT_PRINTED(row.before + "[ext_vidoe_image_zoom # " + std::to_string(code) +
                           "]exec function failed");
            platform.script(row.call).returns(0);
        }
}

TEST(ZoomWindow, ForPortsThatDoNotExistIsThePlatformsToRefuse)
{
    give_sizes(1920, 1080, 1920, 1080);
    zoom_channel = 0xFFFFFFFF;
    platform.script("MI_DISP_GetInputPortAttr").returns(-2);
    EXPECT_EQ(ext_vidoe_image_zoom(0, 0, 0, 64, 64), 1);
    EXPECT_EQ(platform.count("MI_DISP_SetZoomInWindow"), 0u);
}

} // namespace
