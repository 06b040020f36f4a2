/*
 * node_inputs.c - front panel, remote control, mouse and analog inputs. The support package has one kind of
 * event for all; each node gives the record that its driver's header describes.
 */
#include <pthread.h>
#include <string.h>

#include "ad_driver.h"
#include "ir_driver.h"
#include "keyboard_driver.h"
#include "mouse_driver.h"
#include "node.h"
#include "tern_board.h"

enum { kRemotePeriod_ms = 108, kMousePatience_ms = 100, kReleased = 1 };

static void *open_panel(void)
{
    return tern_inputs_open(TERN_INPUT_PANEL);
}

static void *open_remote(void)
{
    return tern_inputs_open(TERN_INPUT_REMOTE);
}

static void close_inputs(void *opening)
{
    tern_inputs_close(opening);
}

static int no_request(void *opening, unsigned long request, void *argument)
{
    (void)opening;
    (void)request;
    (void)argument;
    return node_knows_no_request();
}

static int give(void *buffer, const void *record, size_t size)
{
    memcpy(buffer, record, size);
    return (int)size;
}

/* ------------------------------------------------------------------------------------ panel --- */

/* A key is told when it goes down; that it is let go does not matter. */
static int read_panel(void *opening, void *buffer, size_t size)
{
    TernEvent event;
    if (buffer == NULL || size < sizeof event.code) return node_refuses_value();
    while (tern_inputs_next(opening, &event, 0))
        if (event.down) return give(buffer, &event.code, sizeof event.code);
    return 0;
}

static int panel_request(void *opening, unsigned long request, void *argument)
{
    (void)opening;
    const uint32_t *value = argument;
    if (request != KEYBOARD_RECORD_LAMP && request != KEYBOARD_KEY_POLLED) return node_knows_no_request();
    if (value == NULL || *value > 1) return node_refuses_value();
    if (request == KEYBOARD_RECORD_LAMP) tern_lamp((int)*value);
    return 0; /* this panel wants no sign of life */
}

const NodeKind node_panel = {.path = KEYBOARD_NODE,
                             .open = open_panel,
                             .close = close_inputs,
                             .read = read_panel,
                             .request = panel_request};

/* ----------------------------------------------------------------------------------- remote --- */

static int read_remote(void *opening, void *buffer, size_t size)
{
    TernEvent event;
    if (buffer == NULL || size < sizeof(IrFrame)) return node_refuses_value();
    if (!tern_inputs_next(opening, &event, kRemotePeriod_ms)) return 0;
    const IrFrame frame = {0, event.code, event.down ? 0 : kReleased};
    return give(buffer, &frame, sizeof frame);
}

const NodeKind node_remote = {
    .path = IR_NODE, .open = open_remote, .close = close_inputs, .read = read_remote, .request = no_request};

/* ------------------------------------------------------------------------------------ mouse --- */

/* The package tells how far the mouse was moved, the driver where it is. One position for all openings. */
typedef struct Mouse {
    TernInputs *inputs;
    MouseEvent last;
} Mouse;

static Mouse mice[8];
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER; /* guards the table, and what follows below */

static void *open_mouse(void)
{
    TernInputs *inputs = tern_inputs_open(TERN_INPUT_MOUSE);
    if (inputs == NULL) return NULL;
    Mouse *mouse = NULL;
    pthread_mutex_lock(&lock);
    for (size_t i = 0; i < sizeof mice / sizeof mice[0] && mouse == NULL; ++i)
        if (mice[i].inputs == NULL) mouse = &mice[i];
    if (mouse != NULL) *mouse = (Mouse){.inputs = inputs};
    pthread_mutex_unlock(&lock);
    if (mouse == NULL) tern_inputs_close(inputs);
    return mouse;
}

static void close_mouse(void *opening)
{
    Mouse *mouse = opening;
    pthread_mutex_lock(&lock);
    TernInputs *inputs = mouse->inputs;
    mouse->inputs = NULL;
    pthread_mutex_unlock(&lock);
    tern_inputs_close(inputs);
}

static int32_t moved(int32_t from, int by)
{
    return from + by > 0 ? from + by : 0;
}

static int read_mouse(void *opening, void *buffer, size_t size)
{
    Mouse *mouse = opening;
    TernEvent event;
    if (buffer == NULL || size < sizeof(MouseEvent)) return node_refuses_value();
    if (!tern_inputs_next(mouse->inputs, &event, kMousePatience_ms)) return 0;
    MouseEvent *last = &mouse->last;
    const int presses = event.buttons != last->buttons;
    last->type = event.roll != 0 ? MOUSE_EVENT_WHEEL : presses ? MOUSE_EVENT_BUTTON : MOUSE_EVENT_MOVE;
    last->buttons = event.buttons;
    last->x = moved(last->x, event.dx);
    last->y = moved(last->y, event.dy);
    last->wheel = event.roll;
    return give(buffer, last, sizeof *last);
}

const NodeKind node_mouse = {
    .path = MOUSE_NODE, .open = open_mouse, .close = close_mouse, .read = read_mouse, .request = no_request};

/* ----------------------------------------------------------------------------------- analog --- */

enum { kChips = 4 };

/* What the chips are told and nobody else needs; guarded by `lock`. */
static uint32_t norm;
static AdColorAdjust adjust;
static int motion_started;

static int input_of(uint32_t chip, uint32_t input)
{
    return chip < kChips && input < AD_INPUTS_PER_CHIP ? (int)(chip * AD_INPUTS_PER_CHIP + input) : -1;
}

static int chip_value(const AdChipValue *record, uint32_t *kept)
{
    if (record->selector != AD_CHIP_SELECTOR) return node_refuses_value();
    if (kept != NULL) *kept = record->value;
    return 0;
}

static int tell_loss(AdVideoLoss *record)
{
    const int input = input_of(record->chip, record->input);
    if (input < 0) return node_refuses_value();
    record->lost = !tern_analog_has_signal((unsigned)input);
    return 0;
}

static int tell_motion(AdMotionQuery *record)
{
    const int input = input_of(record->chip, record->input);
    if (input < 0) return node_refuses_value();
    record->result = motion_started ? tern_analog_motion((unsigned)input) : 0;
    return 0;
}

/* Settings of an input that this board's chips have no use for: checked, and that is all. */
static int setting(uint32_t chip, uint32_t input)
{
    return input_of(chip, input) >= 0 ? 0 : node_refuses_value();
}

static int carry_out(unsigned long request, void *record)
{
    switch ((uint32_t)request) {
    case AD_GET_LOSS: return tell_loss(record);
    case AD_SET_ADJUST: memcpy(&adjust, record, sizeof adjust); return 0;
    case AD_GET_ADJUST: memcpy(record, &adjust, sizeof adjust); return 0;
    case AD_SET_NORM: return chip_value(record, &norm);
    case AD_GET_NORM: ((AdChipValue *)record)->value = norm; return 0;
    case AD_SET_WORK_MODE: return setting(((AdWorkMode *)record)->chip, ((AdWorkMode *)record)->input);
    case AD_SET_SAMPLE_RATE:
        return ((AdSampleRate *)record)->selector == AD_CHIP_SELECTOR &&
                       ((AdSampleRate *)record)->rate_code <= 4
                   ? 0
                   : node_refuses_value();
    case AD_SET_AUDIO_PLAYBACK:
    case AD_SET_AUDIO_VOLUME:
    case AD_SET_AUDIO_FORMAT:
    case AD_SET_AUDIO_BITWIDTH:
    case AD_SET_MUTE: return chip_value(record, NULL);
    case AD_MOTION_SET_SENSITIVITY:
        return setting(((AdMotionSensitivity *)record)->chip, ((AdMotionSensitivity *)record)->input);
    case AD_MOTION_SET_AREA: return setting(((AdMotionArea *)record)->chip, ((AdMotionArea *)record)->input);
    case AD_MOTION_GET_AREA: return tell_motion(record);
    default: return node_knows_no_request();
    }
}

static int analog_request(void *opening, unsigned long request, void *record)
{
    (void)opening;
    if ((uint32_t)request != AD_MOTION_START && record == NULL) return node_refuses_value();
    pthread_mutex_lock(&lock);
    int result = 0;
    if ((uint32_t)request == AD_MOTION_START)
        motion_started = 1;
    else
        result = carry_out(request, record);
    pthread_mutex_unlock(&lock);
    return result;
}

const NodeKind node_analog = {.path = AD_NODE, .request = analog_request};
