/*
 * canvas.cpp - composition: which panes must be drawn anew, and drawing them.
 *
 * A pane is drawn by one scaling from the decoded picture into its place on the canvas wherever
 * that gives what the decoder's output port and the display would have given one after the other:
 * when no dimension is scaled twice. Otherwise the two scalings are made, through a picture of the
 * output port's size.
 */
#include "media/canvas.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "devices/framebuffer.h"
#include "host/scaler.h"
#include "media/clock.h"
#include "media/display.h"

namespace vboard
{
namespace
{

/* An I420 picture that the board owns. */
class OwnPicture
{
public:
    void resize(int width, int height)
    {
        if (width == view_.width && height == view_.height) return;
        const int chroma_width = (width + 1) / 2;
        const int chroma_height = (height + 1) / 2;
        const size_t strides[3] = {padded(width), padded(chroma_width), padded(chroma_width)};
        const size_t rows[3] = {static_cast<size_t>(height), static_cast<size_t>(chroma_height),
                                static_cast<size_t>(chroma_height)};
        // 64 spare bytes: vector loops may read past the last row's end.
        bytes_.reset(static_cast<uint8_t *>(::operator new(
            strides[0] * rows[0] + strides[1] * rows[1] + strides[2] * rows[2] + 64, kAlignment)));
        uint8_t *at = bytes_.get();
        for (int plane = 0; plane < 3; ++plane) {
            view_.plane[plane] = at;
            view_.stride[plane] = static_cast<int>(strides[plane]);
            at += strides[plane] * rows[plane];
        }
        view_.width = width;
        view_.height = height;
    }

    const MutablePlanarView &view() const { return view_; }

private:
    static constexpr std::align_val_t kAlignment{64};
    struct Free {
        void operator()(uint8_t *bytes) const { ::operator delete(bytes, kAlignment); }
    };
    static size_t padded(int width) { return (static_cast<size_t>(width) + 63) & ~size_t{63}; }

    std::unique_ptr<uint8_t, Free> bytes_;
    MutablePlanarView view_;
};

/* What the canvas shows of a port. An empty window: nothing. */
struct DrawnPane {
    Rect window;
    Rect crop;
    uint64_t serial = 0;

    bool operator==(const DrawnPane &) const = default;
};

bool overlap(const Rect &a, const Rect &b)
{
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

class Canvas
{
public:
    std::mutex mutex;
    uint64_t sequence = 0;

    vboard_picture update(int32_t device)
    {
        const Scene scene = display_scene(device);
        const bool afresh = scene.width != picture_.view().width || scene.height != picture_.view().height ||
                            memcmp(scene.background, background_, sizeof background_) != 0;
        if (afresh) start_afresh(scene);
        const uint32_t changed = draw(scene);
        ++sequence;
        if (!framebuffer_covers(device)) return describe(picture_.view(), device, changed);

        // The video below stays as it is, so that what did not change need not be drawn again.
        covered_.resize(scene.width, scene.height);
        copier_.scale(read_only(picture_.view()), covered_.view());
        framebuffer_draw(covered_.view());
        return describe(covered_.view(), device, changed);
    }

    void forget()
    {
        picture_ = OwnPicture();
        covered_ = OwnPicture();
        drawn_ = {};
    }

private:
    void start_afresh(const Scene &scene)
    {
        picture_.resize(scene.width, scene.height);
        memcpy(background_, scene.background, sizeof background_);
        drawn_ = {};
        fill({0, 0, scene.width, scene.height});
    }

    void fill(const Rect &area)
    {
        fill_picture(part_of(picture_.view(), area.x, area.y, area.width, area.height), background_[0],
                     background_[1], background_[2]);
    }

    // Pane slots drawn, as bits.
    uint32_t draw(const Scene &scene)
    {
        std::array<DrawnPane, kPaneSlots> next = {};
        for (const Pane &pane : scene.panes)
            next[pane.slot] = {pane.window, pane.crop, pane.ticket->serial()};

        // Where a window has gone or moved, the background comes back, and whoever lies there.
        std::array<Rect, kPaneSlots> cleared;
        size_t clearings = 0;
        for (size_t slot = 0; slot < next.size(); ++slot) {
            const Rect &old = drawn_[slot].window;
            if (old.width == 0 || old == next[slot].window) continue;
            fill(old);
            cleared[clearings++] = old;
        }

        uint32_t changed = 0;
        std::array<Rect, kPaneSlots> redrawn;
        size_t redrawings = 0;
        for (const Pane &pane : scene.panes) {
            const auto under = [&](const Rect &area) { return overlap(area, pane.window); };
            const bool dirty = !(next[pane.slot] == drawn_[pane.slot]) ||
                               std::any_of(cleared.begin(), cleared.begin() + clearings, under) ||
                               std::any_of(redrawn.begin(), redrawn.begin() + redrawings, under);
            if (!dirty) continue;
            draw_pane(pane);
            redrawn[redrawings++] = pane.window;
            changed |= 1u << pane.slot;
        }
        drawn_ = next;
        return changed;
    }

    void draw_pane(const Pane &pane)
    {
        const PlanarView &stream = pane.ticket->picture().view;
        const int width = pane.ticket->width();
        const int height = pane.ticket->height();
        const Rect &to = pane.window;
        const bool whole = pane.crop == Rect{0, 0, width, height};
        const bool reduced = width != stream.width || height != stream.height;
        const bool once_across = width == stream.width || width == to.width;
        const bool once_down = height == stream.height || height == to.height;
        const MutablePlanarView place = part_of(picture_.view(), to.x, to.y, to.width, to.height);
        Stages &stages = stages_[pane.slot];
        if (!reduced) {
            const Rect &crop = pane.crop;
            stages.last.scale(whole ? stream : part_of(stream, crop.x, crop.y, crop.width, crop.height),
                              place);
        } else if (whole && once_across && once_down) {
            stages.last.scale(stream, place);
        } else {
            const Rect &crop = pane.crop;
            stages.middle.resize(width, height);
            stages.first.scale(stream, stages.middle.view());
            stages.last.scale(
                part_of(read_only(stages.middle.view()), crop.x, crop.y, crop.width, crop.height), place);
        }
    }

    vboard_picture describe(const MutablePlanarView &view, int32_t device, uint32_t changed) const
    {
        vboard_picture picture = {};
        picture.device = device;
        picture.width = static_cast<uint32_t>(view.width);
        picture.height = static_cast<uint32_t>(view.height);
        for (int plane = 0; plane < 3; ++plane) {
            picture.plane[plane] = view.plane[plane];
            picture.stride[plane] = static_cast<uint32_t>(view.stride[plane]);
        }
        picture.sequence = sequence;
        picture.time_us = clock_now_us();
        picture.changed_ports = changed;
        return picture;
    }

    struct Stages {
        Scaler first;      // stream to the output port's size
        OwnPicture middle; // there
        Scaler last;       // to the window
    };

    OwnPicture picture_;
    OwnPicture covered_; // the same with the framebuffer over it
    Scaler copier_;
    uint8_t background_[3] = {};
    std::array<DrawnPane, kPaneSlots> drawn_; // by pane slot
    std::array<Stages, kPaneSlots> stages_;   // by pane slot
};

std::array<Canvas, kDevices> &canvases()
{
    static auto *all = new std::array<Canvas, kDevices>;
    return *all;
}

Canvas &canvas_of(int32_t device)
{
    return canvases()[static_cast<size_t>(device_index(device))];
}

} // namespace

CanvasLook::CanvasLook(int32_t device)
    : lock_(canvas_of(device).mutex), picture_(canvas_of(device).update(device))
{
}

void canvas_reset()
{
    for (Canvas &canvas : canvases()) {
        const std::lock_guard guard(canvas.mutex);
        canvas.forget();
        canvas.sequence = 0;
    }
}

} // namespace vboard
