/*
 * The overlay on the board's framebuffer, pixel by pixel, with a wall that notes what it is asked
 * and a wall clock that the test sets.
 */
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

#include <unistd.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include "console/utf8.h"
#include "overlay_board.h"
#include "screen/qr_code.h"

using namespace nvrec;
using namespace nvrec_test;

namespace
{

class NvrecOverlay : public OverlayOnBoard
{
};

TEST(QrCode, TheTokenOfAnAddressDoesNotStandInTheLog)
{
    testing::internal::CaptureStdout();
    const Tile code = qr_tile("http://192.0.2.9:9310/?token=0123456789abcdef");
    std::fflush(stdout);
    const std::string log = testing::internal::GetCapturedStdout();
    EXPECT_GT(code.width, 0);
    EXPECT_NE(log.find("192.0.2.9"), std::string::npos) << log;
    EXPECT_EQ(log.find("0123456789abcdef"), std::string::npos) << log;
}

TEST_F(NvrecOverlay, BordersStandInsideThePanesAndTheSelectedOneIsHighlighted)
{
    start();
    const std::vector<Rect> panes = {
        {0, 0, 960, 540}, {960, 0, 960, 540}, {0, 540, 960, 540}, {960, 540, 960, 540}};
    for (const int selected : {0, 3}) {
        wall_.select(selected);
        for (int i = 0; i < kCameras; ++i) {
            const bool lit = i == selected;
            expect_frame(panes[static_cast<size_t>(i)], lit ? kHighlight_px : kBorder_px,
                         lit ? kHighlightColour : kBorderColour);
        }
    }
    wall_.enlarge(2);
    EXPECT_EQ(pixel(0, 500), 0) << "one camera alone has no border";
}

/* The reference draws with FreeType alone, letter after letter. */
TEST_F(NvrecOverlay, AChineseNameIsTheFontsGlyphs)
{
    options_.names.given[0] = "前门A1";
    start();
    const Rect place = overlay_->panes()->name_of(0);
    ASSERT_FALSE(place.empty());

    FT_Library library = nullptr;
    FT_Face face = nullptr;
    ASSERT_EQ(FT_Init_FreeType(&library), 0);
    ASSERT_EQ(FT_New_Face(library, find_font().c_str(), 0, &face), 0);
    ASSERT_NE(FT_Get_Char_Index(face, u'前'), 0u) << "needs a font with Chinese letters";
    ASSERT_EQ(FT_Set_Pixel_Sizes(face, 0, 27), 0); /* a 20th of the pane */
    constexpr int kRim = 2;
    const int baseline = place.y + kRim + static_cast<int>((face->size->metrics.ascender + 63) / 64);
    int pen = place.x + kRim, inked = 0;
    for (const char16_t unit : std::u16string_view(u"前门A1")) {
        ASSERT_EQ(FT_Load_Char(face, unit, FT_LOAD_RENDER), 0);
        const FT_Bitmap &image = face->glyph->bitmap;
        for (int y = 0; y < static_cast<int>(image.rows); ++y) {
            for (int x = 0; x < static_cast<int>(image.width); ++x) {
                const uint8_t coverage = image.buffer[y * image.pitch + x];
                if (coverage < 80) continue; /* fainter edges may belong to the rim or the video */
                ++inked;
                ASSERT_EQ(pixel(pen + face->glyph->bitmap_left + x, baseline - face->glyph->bitmap_top + y),
                          pixel_of(mixed(0x101010, 0xFFFFFF, coverage)))
                    << x << "," << y << " of letter " << static_cast<int>(unit);
            }
        }
        pen += static_cast<int>((face->glyph->advance.x + 63) / 64);
    }
    EXPECT_GT(inked, 300);
    EXPECT_EQ(pen + kRim, place.right());
    FT_Done_Face(face);
    FT_Done_FreeType(library);
}

TEST_F(NvrecOverlay, TheClockTicksOnceASecondAndTouchesOnlyItsPlace)
{
    start();
    const Rect before_place = overlay_->clock()->place();
    const auto now = Clock::now();
    const auto first = screen();

    time_ += std::chrono::milliseconds(400);
    EXPECT_EQ(overlay_->take_turn(now), now + std::chrono::milliseconds(600));
    EXPECT_EQ(screen(), first) << "the same second";

    time_ += std::chrono::milliseconds(600);
    EXPECT_EQ(overlay_->take_turn(now), now + std::chrono::seconds(1));
    const Rect changed = difference(first, screen());
    EXPECT_FALSE(changed.empty());
    EXPECT_TRUE(inside(changed, around(before_place, overlay_->clock()->place())));
}

TEST_F(NvrecOverlay, ACameraThatComesWhileItStandsHasItsName)
{
    start();
    const auto before = screen();
    const Rect numbered = overlay_->panes()->name_of(2);
    overlay_->name_camera(2, "the door to the yard behind the house");
    const Rect named = overlay_->panes()->name_of(2);
    EXPECT_GT(named.w, numbered.w);
    EXPECT_TRUE(inside(difference(before, screen()), around(numbered, named)));
    EXPECT_NE(screen(), before);
    overlay_->name_camera(2, "");
    EXPECT_EQ(overlay_->panes()->name_of(2), numbered);
    EXPECT_EQ(screen(), before) << "by its number again";
}

TEST_F(NvrecOverlay, TheMenuChangesTheLayout)
{
    start();
    const auto before = screen();
    press({Key::kMenu});
    ASSERT_TRUE(overlay_->menu()->is_open());
    const Rect place = overlay_->menu()->place();
    EXPECT_EQ(difference(before, screen()), place);
    light(MenuAction::kLayout, Layout::kOneAndFive);
    press({Key::kEnter});
    EXPECT_EQ(wall_.layout(), Layout::kOneAndFive);
    EXPECT_FALSE(overlay_->menu()->is_open());
    EXPECT_EQ(overlay_->panes()->pane_of(0), (Rect{0, 0, 1280, 720}));
    expect_frame({0, 0, 1280, 720}, kHighlight_px, kHighlightColour);
    EXPECT_EQ(pixel(place.x + 40, place.y + 40), 0) << "the menu is gone";

    press({Key::kMenu, Key::kMenu});
    EXPECT_FALSE(overlay_->menu()->is_open());
    EXPECT_FALSE(overlay_->on_key(Key::kUp)) << "without a menu the arrows are the wall's";
}

TEST_F(NvrecOverlay, AnOpenMenuHasTheKeysBeforeAZoomedPicture)
{
    start();
    EXPECT_GT(overlay_->input_layer(), InputLayer::kZoom);
    press({Key::kMenu});
    EXPECT_LT(overlay_->input_layer(), InputLayer::kZoom);
    press({Key::kBack});
    EXPECT_GT(overlay_->input_layer(), InputLayer::kZoom);
}

TEST_F(NvrecOverlay, TheMenuEnlargesZoomsShowsTheAddressAndEnds)
{
    start();
    wall_.select(2);
    press({Key::kMenu});
    light(MenuAction::kEnlarge);
    press({Key::kEnter});
    EXPECT_EQ(wall_.enlarged(), 2);

    press({Key::kMenu});
    light(MenuAction::kZoom);
    press({Key::kEnter});
    EXPECT_EQ(wall_.keys, std::vector{Key::kZoom});

    press({Key::kMenu});
    light(MenuAction::kAddress);
    press({Key::kEnter});
    const Rect card = overlay_->address_place();
    ASSERT_FALSE(card.empty());
    EXPECT_EQ(pixel(card.x + 4, card.y + 4), pixel_of(0xFFFFFF));
    press({Key::kBack});
    EXPECT_EQ(pixel(card.x + 4, card.y + 4), 0);
    EXPECT_FALSE(overlay_->on_key(Key::kBack)) << "nothing left to close";

    press({Key::kMenu});
    light(MenuAction::kQuit);
    press({Key::kEnter});
    EXPECT_EQ(wall_.ends, std::vector{0});
    EXPECT_EQ(wall_.wakes, 1);
}

TEST_F(NvrecOverlay, TheMouseOpensTheMenuAndChooses)
{
    start();
    EXPECT_TRUE(overlay_->on_pointer({1900, 1060, 2, 2, 0}));
    ASSERT_TRUE(overlay_->menu()->is_open());
    EXPECT_TRUE(inside(overlay_->menu()->place(), {0, 0, 1920, 1080}));
    size_t target = 0;
    while (overlay_->menu()->items()[target].layout != Layout::kGrid3)
        ++target;
    const Rect row = overlay_->menu()->row(target);
    EXPECT_TRUE(overlay_->on_pointer({row.x + 20, row.y + 5, 0, 0, 0}));
    EXPECT_EQ(overlay_->menu()->chosen_index(), target);
    EXPECT_TRUE(overlay_->on_pointer({row.x + 20, row.y + 5, 1, 1, 0}));
    EXPECT_EQ(wall_.layout(), Layout::kGrid3);

    overlay_->on_pointer({200, 200, 2, 2, 0});
    EXPECT_EQ(overlay_->menu()->place().x, 200);
    overlay_->on_pointer({20, 20, 1, 1, 0});
    EXPECT_FALSE(overlay_->menu()->is_open()) << "a press beside it closes it";
    EXPECT_FALSE(overlay_->on_pointer({20, 20, 1, 1, 0})) << "and the next one is the wall's";
}

TEST_F(NvrecOverlay, TheCursorPutsBackWhatItCovered)
{
    start();
    const auto before = screen();
    const Rect name = overlay_->panes()->name_of(1);
    for (const auto &[x, y] :
         {std::pair(name.x + 3, name.y + 3), std::pair(1910, 1070), std::pair(958, 530)}) {
        overlay_->on_pointer({x, y, 0, 0, 0});
        const auto with = screen();
        EXPECT_EQ(pixel(x, y) & 0x8000, 0x8000) << "the tip";
        EXPECT_TRUE(inside(difference(before, with), {x, y, 32, 32}));
        for (int row = 0; row < 32 && y + row < 1080; ++row) {
            for (int column = 0; column < 32 && x + column < 1920; ++column) {
                const uint16_t drawn = CurseValue[row * 32 + column];
                const uint16_t under = before[static_cast<size_t>((y + row) * 1920 + x + column)];
                const uint16_t black = pixel_of(0);
                const uint16_t expected = drawn == 0x1F ? under : drawn == 0 ? black : drawn | 0x8000;
                ASSERT_EQ(pixel(x + column, y + row), expected) << column << "," << row;
            }
        }
    }
    overlay_->take_turn(Clock::now() + std::chrono::seconds(6));
    EXPECT_EQ(difference(before, screen()), Rect{}) << "a mouse at rest goes out of the way";
}

TEST_F(NvrecOverlay, WithoutAFontThereAreStillBorders)
{
    const std::string path = testing::TempDir() + "no_font_" + std::to_string(::getpid());
    std::ofstream(path) << "not a font";
    options_.font_path = path;
    start();
    std::remove(path.c_str());
    EXPECT_EQ(overlay_->menu(), nullptr);
    expect_frame({0, 0, 960, 540}, kHighlight_px, kHighlightColour);
    EXPECT_FALSE(overlay_->on_key(Key::kMenu));
    overlay_->take_turn(Clock::now());
}

TEST_F(NvrecOverlay, LeavesAnEmptyScreen)
{
    start();
    overlay_->stop();
    EXPECT_EQ(difference(screen(), std::vector<uint16_t>(1920 * 1080, 0)), Rect{});
}

TEST_F(NvrecOverlay, AutoWithoutAWindowDrawsNothing)
{
    options_.mode = OverlayMode::kAuto;
    start();
    EXPECT_FALSE(overlay_->on_key(Key::kMenu));
    EXPECT_FALSE(overlay_->on_pointer({5, 5, 2, 2, 0}));
    EXPECT_EQ(overlay_->take_turn(Clock::now()), Clock::time_point::max());
    EXPECT_EQ(difference(screen(), std::vector<uint16_t>(1920 * 1080, 0)), Rect{});
}

TEST(NvrecTexts, NamesComeInUtf8AndGb2312AndBothScripts)
{
    EXPECT_EQ(units_of("Camera 1", ChineseScript::kAsTyped), u"Camera 1");
    EXPECT_EQ(units_of("前门", ChineseScript::kAsTyped), u"前门");
    EXPECT_EQ(units_of("\xC7\xB0\xC3\xC5", ChineseScript::kAsTyped), u"前门") << "GB2312 bytes";
    EXPECT_EQ(units_of("前门", ChineseScript::kTraditional), u"前門");
    EXPECT_EQ(units_of("\xC7\xB0\xC3\xC5", ChineseScript::kTraditional), u"前門");
    EXPECT_EQ(units_of("a\nb", ChineseScript::kAsTyped), u"a b");
    EXPECT_EQ(units_of("\xFF", ChineseScript::kAsTyped), u"") << "neither of both";
    EXPECT_EQ(units_of("", ChineseScript::kTraditional), u"");
    EXPECT_EQ(units_of("Çatı Ωμέγα Двор 한옥 貓", ChineseScript::kAsTyped), u"Çatı Ωμέγα Двор 한옥 貓");
    EXPECT_EQ(units_of("门 🐈 𠀀", ChineseScript::kTraditional), u"門 🐈 𠀀") << "beyond 16 bits";
    for (const char *broken : {"\xF0\x9F\x90", "\xED\xA0\x80", "\xC0\x80", "\xF4\x90\x80\x80"})
        EXPECT_FALSE(is_utf8(broken));
}

TEST(NvrecTexts, ACharacterThatTheFontLacksComesFromAnotherOrIsMarkedAsMissing)
{
    Font font;
    ASSERT_EQ(font.open(find_font()), "");
    for (const char16_t *text : {u"Ωμέγα", u"ឋ", u"🐈", u"\xD83D"}) { /* the last is half a character */
        const Mask mask = font.render(text, 24, 500);
        EXPECT_GT(mask.width, 0);
        EXPECT_GT(std::ranges::count_if(mask.coverage, [](uint8_t ink) { return ink > 128; }), 5);
    }
    const Mask cut = font.render(u"🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈🐈", 24, 100);
    EXPECT_LE(cut.width, 100);
}

TEST(NvrecCanvas, NoColourIsTheColourKey)
{
    for (const Colour colour : {0x000000u, 0x070707u, 0x000001u})
        EXPECT_EQ(pixel_of(colour), 0x8421);
    EXPECT_EQ(pixel_of(0xFFFFFF), 0xFFFF);
    EXPECT_EQ(pixel_of(0xF80000), 0xFC00);
    EXPECT_EQ(pixel_of(0x000008), 0x8001);
}

} // namespace
