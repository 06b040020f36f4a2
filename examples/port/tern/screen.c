/*
 * screen.c - simulated screens, planes and tiles. Nothing is drawn: a tile knows whether it has a picture,
 * and counts those that it was given.
 */
#include "tern_hand.h"
#include "tern_inside.h"

typedef struct Screen {
    int on, has_mode;
    TernMode mode;
} Screen;

typedef struct Tile {
    TernTile set, committed;
    int waits, shows; /* a picture */
    uint64_t taken;
} Tile;

typedef struct Plane {
    TernPlane set, committed;
    Tile tiles[TERN_TILES];
} Plane;

static Screen screens[TERN_SCREENS];
static Plane planes[TERN_PLANES];

static const TernMode known_modes[] = {
    {720, 480, 30},   {720, 480, 60},   {720, 576, 25},   {720, 576, 50},   {800, 600, 60},
    {1024, 768, 60},  {1280, 720, 50},  {1280, 720, 60},  {1280, 800, 60},  {1280, 1024, 60},
    {1366, 768, 60},  {1440, 900, 60},  {1600, 1200, 60}, {1680, 1050, 60}, {1920, 1080, 24},
    {1920, 1080, 25}, {1920, 1080, 30}, {1920, 1080, 50}, {1920, 1080, 60}, {1920, 1200, 60},
    {2560, 1440, 30}, {3840, 2160, 30},
};

static int is_known(const TernMode *mode)
{
    for (unsigned i = 0; i < sizeof known_modes / sizeof known_modes[0]; ++i)
        if (known_modes[i].width == mode->width && known_modes[i].height == mode->height &&
            known_modes[i].hertz == mode->hertz)
            return 1;
    return 0;
}

static int is_screen(int screen)
{
    return screen >= 0 && screen < TERN_SCREENS;
}

static int is_tile(int plane, int tile)
{
    return plane >= 0 && plane < TERN_PLANES && tile >= 0 && tile < TERN_TILES;
}

TernStatus tern_screen_mode(int screen, const TernMode *mode, unsigned connectors)
{
    if (!is_screen(screen) || !is_known(mode) || connectors == 0) return TERN_BAD_ARGUMENT;
    pthread_mutex_lock(&tern_lock);
    const TernStatus status = screens[screen].on ? TERN_BAD_ARGUMENT : TERN_OK;
    if (status == TERN_OK) {
        screens[screen].mode = *mode;
        screens[screen].has_mode = 1;
    }
    pthread_mutex_unlock(&tern_lock);
    return status;
}

TernStatus tern_screen_backdrop(int screen, uint8_t red, uint8_t green, uint8_t blue)
{
    (void)red;
    (void)green;
    (void)blue;
    return is_screen(screen) ? TERN_OK : TERN_BAD_ARGUMENT;
}

TernStatus tern_screen_on(int screen, int on)
{
    if (!is_screen(screen)) return TERN_BAD_ARGUMENT;
    pthread_mutex_lock(&tern_lock);
    const TernStatus status = on && !screens[screen].has_mode ? TERN_BAD_ARGUMENT : TERN_OK;
    if (status == TERN_OK) screens[screen].on = on;
    pthread_mutex_unlock(&tern_lock);
    return status;
}

TernStatus tern_plane_set(int plane, const TernPlane *settings)
{
    if (!is_tile(plane, 0) || settings->screen < -1 || settings->screen >= TERN_SCREENS)
        return TERN_BAD_ARGUMENT;
    pthread_mutex_lock(&tern_lock);
    planes[plane].set = *settings;
    pthread_mutex_unlock(&tern_lock);
    return TERN_OK;
}

static int is_even(const TernTile *tile)
{
    return (tile->x | tile->y | tile->width | tile->height) % 2 == 0;
}

TernStatus tern_tile_set(int plane, int tile, const TernTile *settings)
{
    if (!is_tile(plane, tile) || !is_even(settings) ||
        settings->crop_x + settings->crop_width > TERN_CROP_WHOLE ||
        settings->crop_y + settings->crop_height > TERN_CROP_WHOLE)
        return TERN_BAD_ARGUMENT;
    pthread_mutex_lock(&tern_lock);
    planes[plane].tiles[tile].set = *settings;
    pthread_mutex_unlock(&tern_lock);
    return TERN_OK;
}

TernStatus tern_tile_forget(int plane, int tile, int shown)
{
    if (!is_tile(plane, tile)) return TERN_BAD_ARGUMENT;
    pthread_mutex_lock(&tern_lock);
    planes[plane].tiles[tile].waits = 0;
    if (shown) planes[plane].tiles[tile].shows = 0;
    pthread_mutex_unlock(&tern_lock);
    return TERN_OK;
}

TernStatus tern_commit(void)
{
    pthread_mutex_lock(&tern_lock);
    for (int i = 0; i < TERN_PLANES; ++i) {
        planes[i].committed = planes[i].set;
        for (int j = 0; j < TERN_TILES; ++j)
            planes[i].tiles[j].committed = planes[i].tiles[j].set;
    }
    pthread_mutex_unlock(&tern_lock);
    return TERN_OK;
}

int tern_tiles_take(const TernDecoder *decoder)
{
    int taken = 0;
    for (int i = 0; i < TERN_PLANES; ++i) {
        for (int j = 0; j < TERN_TILES; ++j) {
            Tile *tile = &planes[i].tiles[j];
            if (tile->committed.feed != decoder) continue;
            tile->shows = 1;
            ++tile->taken;
            taken = 1;
        }
    }
    return taken;
}

void tern_tiles_cut(const TernDecoder *decoder)
{
    for (int i = 0; i < TERN_PLANES; ++i) {
        for (int j = 0; j < TERN_TILES; ++j) {
            Tile *tile = &planes[i].tiles[j];
            if (tile->set.feed == decoder) tile->set.feed = NULL;
            if (tile->committed.feed == decoder) tile->committed.feed = NULL;
        }
    }
}

uint64_t tern_eye_tile(int plane, int tile, int *shows)
{
    if (!is_tile(plane, tile)) return 0;
    pthread_mutex_lock(&tern_lock);
    const Plane *on = &planes[plane];
    const Tile *of = &on->tiles[tile];
    *shows = of->shows && of->committed.visible && on->committed.visible && on->committed.screen >= 0 &&
             screens[on->committed.screen].on && of->committed.width > 0 && of->committed.height > 0;
    const uint64_t taken = of->taken;
    pthread_mutex_unlock(&tern_lock);
    return taken;
}
