/*
 * LoadBMPEx beside SDL2's BMP loader. SDL's surface keeps the depth of the file; its time is given
 * with and without the conversion to the format that LoadBMPEx delivers. The file is in the page
 * cache.
 */
#include <SDL.h>
#include <cstdint>
#include <random>
#include <unistd.h>

#include "contest.h"
#include "nvrhal.h"

namespace bench_gui
{
namespace
{

struct Picture {
    int width, height, bits;
};

std::string make_file(const Picture &picture)
{
    char path[] = "/tmp/bench_gui_XXXXXX";
    const int descriptor = mkstemp(path);
    if (descriptor >= 0) close(descriptor);
    // SDL writes 32 bits only with alpha, and without the header of a compressed file only on request.
    SDL_SetHint(SDL_HINT_BMP_SAVE_LEGACY_FORMAT, "1");
    SDL_Surface *surface =
        SDL_CreateRGBSurfaceWithFormat(0, picture.width, picture.height, picture.bits,
                                       picture.bits == 24 ? SDL_PIXELFORMAT_BGR24 : SDL_PIXELFORMAT_ARGB8888);
    std::mt19937 random(1);
    for (int i = 0; i < surface->h * surface->pitch; ++i)
        static_cast<uint8_t *>(surface->pixels)[i] = static_cast<uint8_t>(random());
    SDL_SaveBMP(surface, path);
    SDL_FreeSurface(surface);
    return path;
}

/** The file is what its line in the report says. */
bool has_depth(const std::string &path, int bits)
{
    uint8_t rest[12] = {}, info[44] = {};
    return GetBmpInfo(path.c_str(), rest, info) == 0 && info[14] == bits && info[16] == 0;
}

void compare(FILE *report, const Picture &picture, uint32_t color_format, uint32_t sdl_format,
             const char *name)
{
    const std::string path = make_file(picture);
    if (!has_depth(path, picture.bits)) {
        std::fprintf(report, "BMP of %d bits: not written as such\n", picture.bits);
        return void(unlink(path.c_str()));
    }
    std::vector<uint8_t> pixels(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 4);
    OsdSurface surface = {0, 0, 0, pixels.data()};
    std::vector<Contestant> contestants = {
        {"nvrhal", [&] { LoadBMPEx(path.c_str(), &surface, color_format); }},
        {"SDL", [&] { SDL_FreeSurface(SDL_LoadBMP(path.c_str())); }},
        {"SDL and conversion",
         [&] {
             SDL_Surface *loaded = SDL_LoadBMP(path.c_str());
             SDL_FreeSurface(SDL_ConvertSurfaceFormat(loaded, sdl_format, 0));
             SDL_FreeSurface(loaded);
         }},
    };
    // Work that takes milliseconds is done once a turn, so that some turns are not interrupted.
    const bool is_large = picture.width > 1000;
    run(contestants, is_large ? 60 : 20, is_large ? 1 : 50);
    unlink(path.c_str());
    const double own = contestants[0].best_s;
    std::fprintf(report, "BMP %4d x %-4d %d bits to %-8s", picture.width, picture.height, picture.bits, name);
    for (const Contestant &contestant : contestants)
        std::fprintf(report, "  %s %.3f ms", contestant.name.c_str(), contestant.best_s * 1e3);
    std::fprintf(report, "  | SDL takes %.2f, with conversion %.2f times as long\n",
                 contestants[1].best_s / own, contestants[2].best_s / own);
}

} // namespace

void compare_bitmaps(FILE *report)
{
    for (const auto &[width, height] : {std::pair(1920, 1080), std::pair(64, 64)}) {
        compare(report, {width, height, 24}, 4, SDL_PIXELFORMAT_ARGB1555, "ARGB1555");
        compare(report, {width, height, 24}, 3, SDL_PIXELFORMAT_RGB565, "RGB565");
        compare(report, {width, height, 24}, 7, SDL_PIXELFORMAT_ARGB8888, "ARGB8888");
        compare(report, {width, height, 32}, 7, SDL_PIXELFORMAT_ARGB8888, "ARGB8888");
    }
}

} // namespace bench_gui
