/* window.cpp - SDL2 behind window.h. The picture is a streaming texture, scaled by the renderer. */
#include "host/window.h"

#include <SDL.h>
#include <algorithm>

namespace vboard
{
namespace
{

struct SdlDelete {
    void operator()(SDL_Window *window) const { SDL_DestroyWindow(window); }
    void operator()(SDL_Renderer *renderer) const { SDL_DestroyRenderer(renderer); }
    void operator()(SDL_Texture *texture) const { SDL_DestroyTexture(texture); }
};

class SdlWindow final : public DeskWindow
{
public:
    SdlWindow(SDL_Window *window, SDL_Renderer *renderer) : window_(window), renderer_(renderer) {}

    ~SdlWindow() override
    {
        texture_.reset();
        renderer_.reset();
        window_.reset();
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
    }

    bool show(const PlanarView &picture) override
    {
        if (texture_ == nullptr || picture.width != width_ || picture.height != height_) {
            width_ = picture.width;
            height_ = picture.height;
            texture_.reset(SDL_CreateTexture(renderer_.get(), SDL_PIXELFORMAT_IYUV,
                                             SDL_TEXTUREACCESS_STREAMING, width_, height_));
            SDL_RenderSetLogicalSize(renderer_.get(), width_, height_);
        }
        if (texture_ == nullptr) return false;
        SDL_UpdateYUVTexture(texture_.get(), nullptr, picture.plane[0], picture.stride[0], picture.plane[1],
                             picture.stride[1], picture.plane[2], picture.stride[2]);
        SDL_RenderClear(renderer_.get());
        SDL_RenderCopy(renderer_.get(), texture_.get(), nullptr, nullptr);
        SDL_RenderPresent(renderer_.get());
        return true;
    }

    bool handle_events() override
    {
        SDL_Event event;
        while (SDL_PollEvent(&event) != 0) {
            if (event.type == SDL_QUIT) open_ = false;
            if (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE) open_ = false;
        }
        return open_;
    }

private:
    std::unique_ptr<SDL_Window, SdlDelete> window_;
    std::unique_ptr<SDL_Renderer, SdlDelete> renderer_;
    std::unique_ptr<SDL_Texture, SdlDelete> texture_;
    int width_ = 0;
    int height_ = 0;
    bool open_ = true;
};

} // namespace

std::unique_ptr<DeskWindow> DeskWindow::open(const char *title, int width, int height)
{
    // The application keeps its own signal handling and main function.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetMainReady();
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) return nullptr;
    // A window larger than most desks is opened at half its size.
    const int divisor = width > 1600 ? 2 : 1;
    SDL_Window *window = SDL_CreateWindow(title, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                          width / divisor, height / divisor, SDL_WINDOW_RESIZABLE);
    SDL_Renderer *renderer = window != nullptr ? SDL_CreateRenderer(window, -1, 0) : nullptr;
    if (renderer == nullptr) {
        if (window != nullptr) SDL_DestroyWindow(window);
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        return nullptr;
    }
    return std::make_unique<SdlWindow>(window, renderer);
}

} // namespace vboard
