/*
 * window.cpp - SDL2 behind window.h. The picture is a streaming texture, scaled by the renderer, whose
 * logical size makes SDL report the mouse in the picture's pixels.
 */
#include "host/window.h"

#include <SDL.h>
#include <algorithm>
#include <utility>

#include "mouse_driver.h"

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

    bool handle_events(const WindowKeys &keys, DeskInput &input) override
    {
        SDL_Event event;
        while (SDL_PollEvent(&event) != 0)
            handle(event, keys, input);
        return open_;
    }

private:
    void handle(const SDL_Event &event, const WindowKeys &keys, DeskInput &input)
    {
        switch (event.type) {
        case SDL_QUIT: open_ = false; break;
        case SDL_KEYDOWN: press_key(event.key.keysym.sym, keys, input); break;
        case SDL_MOUSEMOTION: move_to(event.motion.x, event.motion.y, input); break;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            move_to(event.button.x, event.button.y, input);
            set_button(event.button.button, event.type == SDL_MOUSEBUTTONDOWN, input);
            break;
        case SDL_MOUSEWHEEL: input.turn_wheel(event.wheel.y); break;
        default: break;
        }
    }

    void press_key(SDL_Keycode key, const WindowKeys &keys, DeskInput &input)
    {
        const auto found = keys.find(key);
        if (found != keys.end())
            input.press(found->second);
        else if (key == SDLK_ESCAPE)
            open_ = false;
        else if (key == SDLK_F11)
            fill_desk((SDL_GetWindowFlags(window_.get()) & SDL_WINDOW_FULLSCREEN_DESKTOP) == 0);
    }

    void fill_desk(bool fill)
    {
        SDL_SetWindowFullscreen(window_.get(), fill ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
        SDL_ShowCursor(fill ? SDL_DISABLE : SDL_ENABLE); // the recorder draws its own
    }

    // The mouse of the board does not leave the output; the window's may be beside the picture.
    void move_to(int x, int y, DeskInput &input)
    {
        x = std::clamp(x, 0, std::max(width_ - 1, 0));
        y = std::clamp(y, 0, std::max(height_ - 1, 0));
        if (x == mouse_x_ && y == mouse_y_) return;
        mouse_x_ = x;
        mouse_y_ = y;
        input.move(x, y);
    }

    void set_button(uint8_t button, bool down, DeskInput &input)
    {
        uint32_t mask = 0;
        for (const auto &[sdl, board] : kButtons)
            if (sdl == button) mask = board;
        buttons_ = down ? buttons_ | mask : buttons_ & ~mask;
        if (mask != 0) input.set_buttons(buttons_);
    }

    static constexpr std::pair<uint8_t, uint32_t> kButtons[] = {{SDL_BUTTON_LEFT, MOUSE_BUTTON_LEFT},
                                                                {SDL_BUTTON_RIGHT, MOUSE_BUTTON_RIGHT},
                                                                {SDL_BUTTON_MIDDLE, MOUSE_BUTTON_MIDDLE}};

    std::unique_ptr<SDL_Window, SdlDelete> window_;
    std::unique_ptr<SDL_Renderer, SdlDelete> renderer_;
    std::unique_ptr<SDL_Texture, SdlDelete> texture_;
    int width_ = 0;
    int height_ = 0;
    int mouse_x_ = -1;
    int mouse_y_ = -1;
    uint32_t buttons_ = 0;
    bool open_ = true;
};

} // namespace

int32_t key_number(const char *name)
{
    return SDL_GetKeyFromName(name);
}

std::unique_ptr<DeskWindow> DeskWindow::open(const char *title, int width, int height)
{
    // The application keeps its own signal handling and main function.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetMainReady();
    // Unless the environment says otherwise, a window of another size is not scaled by whole pixels.
    SDL_SetHintWithPriority(SDL_HINT_RENDER_SCALE_QUALITY, "linear", SDL_HINT_DEFAULT);
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) return nullptr;
    // A window larger than most desktops is opened at half its size.
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
