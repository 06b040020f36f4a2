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

#include "devices/framebuffer.h"
#include "host/scaler.h"
#include "media/clock.h"
#include "media/own_picture.h"
#include "media/pane_geometry.h"

namespace vboard
{
namespace
{

constexpr size_t kBuffers = 1 + kStepQueue; // on screen, and for the steps that ports queue ahead

/* What a composition buffer shows of a pane slot. An empty window: nothing. */
struct DrawnPane {
    Rect window;
    Rect crop;
    uint64_t serial = 0;

    bool operator==(const DrawnPane &) const = default;
};
using DrawnPanes = std::array<DrawnPane, kPaneSlots>;

/* The two scalings of a pane slot. */
struct Stages {
    Scaler first;      // stream to the output port's size
    OwnPicture middle; // there
    Scaler last;       // to the window
};

void draw_pane(const Pane &pane, Stages &stages, const MutablePlanarView &canvas)
{
    const PlanarView &stream = pane.ref->picture().view;
    const int width = pane.ref->width();
    const int height = pane.ref->height();
    const Rect &to = pane.window;
    const Rect &crop = pane.crop;
    const bool whole = crop == Rect{0, 0, width, height};
    const bool reduced = width != stream.width || height != stream.height;
    const bool once_across = width == stream.width || width == to.width;
    const bool once_down = height == stream.height || height == to.height;
    const MutablePlanarView place = part_of(canvas, to.x, to.y, to.width, to.height);
    if (!reduced) {
        stages.last.scale(whole ? stream : part_of(stream, crop.x, crop.y, crop.width, crop.height), place);
    } else if (whole && once_across && once_down) {
        stages.last.scale(stream, place);
    } else {
        stages.middle.resize(width, height);
        stages.first.scale(stream, stages.middle.view());
        stages.last.scale(part_of(read_only(stages.middle.view()), crop.x, crop.y, crop.width, crop.height),
                          place);
    }
}

/*
 * One picture of the output. The looker owns all of it; a worker owns its slot's crop and serial, and
 * the pixels of its window, while it holds the buffer's lock together with the slot's.
 */
struct CompositionBuffer {
    std::shared_mutex mutex;
    OwnPicture picture;
    DrawnPanes drawn; // by pane slot
    uint8_t background[3] = {};
    uint64_t step = 0; // composed for it last

    void fill(const Rect &area)
    {
        fill_picture(part_of(picture.view(), area.x, area.y, area.width, area.height), background[0],
                     background[1], background[2]);
    }

    void start_afresh(const Scene &scene)
    {
        const MutablePlanarView &view = picture.view();
        if (scene.width == view.width && scene.height == view.height &&
            memcmp(scene.background, background, sizeof background) == 0)
            return;
        picture.resize(scene.width, scene.height);
        memcpy(background, scene.background, sizeof background);
        drawn = {};
        fill({0, 0, scene.width, scene.height});
    }

    // Draw what differs from `next`, which is the scene's panes by slot.
    void draw(const Scene &scene, const DrawnPanes &next, std::array<Stages, kPaneSlots> &stages)
    {
        // Where a window has gone or moved, the background comes back, and whoever lies there.
        std::array<Rect, kPaneSlots> cleared;
        size_t clearings = 0;
        for (size_t slot = 0; slot < next.size(); ++slot) {
            const Rect &old = drawn[slot].window;
            if (old.width == 0 || old == next[slot].window) continue;
            fill(old);
            cleared[clearings++] = old;
        }

        std::array<Rect, kPaneSlots> redrawn;
        size_t redrawings = 0;
        for (const Pane &pane : scene.panes) {
            const auto under = [&](const Rect &area) { return overlap(area, pane.window); };
            const bool dirty = !(next[pane.slot] == drawn[pane.slot]) ||
                               std::any_of(cleared.begin(), cleared.begin() + clearings, under) ||
                               std::any_of(redrawn.begin(), redrawn.begin() + redrawings, under);
            if (!dirty) continue;
            draw_pane(pane, stages[pane.slot], picture.view());
            redrawn[redrawings++] = pane.window;
        }
        drawn = next;
    }

    // May a worker draw into this window? Not where anything else was drawn, or was drawn elsewhere.
    bool has_place_for(const PaneAhead &ahead) const
    {
        const MutablePlanarView &view = picture.view();
        if (view.width != ahead.width || view.height != ahead.height || step >= ahead.step) return false;
        if (!(drawn[ahead.pane.slot].window == ahead.pane.window)) return false;
        for (size_t slot = 0; slot < drawn.size(); ++slot)
            if (slot != ahead.pane.slot && overlap(drawn[slot].window, ahead.pane.window)) return false;
        return true;
    }
};

class Canvas
{
public:
    std::mutex mutex;

    // Bring the scene's buffer up to date and keep it locked with `buffer_lock`.
    vboard_picture update(int32_t device, Overlay overlay, std::unique_lock<std::shared_mutex> &buffer_lock)
    {
        const Scene scene = display_scene(device);
        DrawnPanes next = {};
        for (const Pane &pane : scene.panes)
            next[pane.slot] = {pane.window, pane.crop, pane.ref->serial()};
        uint32_t changed = 0;
        for (const Pane &pane : scene.panes)
            if (!(next[pane.slot] == shown_[pane.slot])) changed |= 1u << pane.slot;
        shown_ = next;
        ++sequence_;

        CompositionBuffer &buffer = buffers_[scene.step % kBuffers];
        buffer_lock = std::unique_lock(buffer.mutex);
        buffer.step = scene.step;
        buffer.start_afresh(scene);
        buffer.draw(scene, next, stages_);
        if (overlay == Overlay::no || !framebuffer_covers(device, scene.width, scene.height))
            return describe(buffer.picture.view(), device, changed);

        // The video below stays as it is, so that what did not change need not be drawn again.
        covered_.resize(scene.width, scene.height);
        copy_picture(read_only(buffer.picture.view()), covered_.view());
        framebuffer_draw(covered_.view());
        return describe(covered_.view(), device, changed);
    }

    void draw_ahead(const PaneAhead &ahead)
    {
        CompositionBuffer &buffer = buffers_[ahead.step % kBuffers];
        const std::shared_lock buffer_lock(buffer.mutex, std::try_to_lock);
        if (!buffer_lock.owns_lock()) return; // lent, or being composed
        const Pane &pane = ahead.pane;
        Ahead &slot = ahead_[pane.slot];
        const std::unique_lock slot_lock(slot.mutex, std::try_to_lock);
        if (!slot_lock.owns_lock() || !buffer.has_place_for(ahead)) return;
        draw_pane(pane, slot.stages, buffer.picture.view());
        buffer.drawn[pane.slot].crop = pane.crop;
        buffer.drawn[pane.slot].serial = pane.ref->serial();
    }

    void forget()
    {
        for (CompositionBuffer &buffer : buffers_) {
            const std::lock_guard buffer_guard(buffer.mutex);
            buffer.picture = OwnPicture();
            buffer.drawn = {};
            buffer.step = 0;
        }
        covered_ = OwnPicture();
        shown_ = {};
        sequence_ = 0;
    }

private:
    struct Ahead {
        std::mutex mutex; // two workers may share a slot for a moment when its port is bound anew
        Stages stages;
    };

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
        picture.sequence = sequence_;
        picture.time_us = clock_now_us();
        picture.changed_ports = changed;
        return picture;
    }

    std::array<CompositionBuffer, kBuffers> buffers_; // by step
    std::array<Stages, kPaneSlots> stages_;           // the looker's, by pane slot
    std::array<Ahead, MI_DISP_INPUT_PORTS> ahead_;    // the workers', by pane slot
    DrawnPanes shown_;                                // in the composition before
    OwnPicture covered_;                              // a buffer with the framebuffer over it
    uint64_t sequence_ = 0;
};

Canvas &canvas_of(int32_t device)
{
    static auto *all = new std::array<Canvas, kDevices>;
    return (*all)[static_cast<size_t>(device_index(device))];
}

} // namespace

CanvasLook::CanvasLook(int32_t device, Overlay overlay)
    : lock_(canvas_of(device).mutex), picture_(canvas_of(device).update(device, overlay, buffer_lock_))
{
}

void canvas_draw_ahead(int32_t device, const PaneAhead &ahead)
{
    canvas_of(device).draw_ahead(ahead);
}

void canvas_reset()
{
    for (int32_t device = kFirstDevice; device < kFirstDevice + kDevices; ++device) {
        Canvas &canvas = canvas_of(device);
        const std::lock_guard guard(canvas.mutex);
        canvas.forget();
    }
}

} // namespace vboard
