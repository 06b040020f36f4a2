/*
 * HDMI transmitter: opened at start-up and again for the GUI, configured by the display bring-up,
 * and kept in step with the monitor by a callback.
 *
 *   closed -> vo_hdmi_start -> open -> ST_Hdmi_Start -> running -> unplug: stopped
 *                                                          ^---- plug: attributes re-applied
 *
 * Hdmi_callback runs on the platform's event thread beside the library's callers; it touches its
 * own records and the platform only. Everything else: UI thread.
 */
#include "core/checked_call.h"
#include "core/log.h"
#include "mi_hdmi.h"
#include "nvrhal.h"

#include <cstring>

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "sdk3531Lib.c";
constexpr uint32_t kHdmiDevice = 0;
constexpr uint32_t kAudioRate48kHz = 3; // the transmitter's sample-rate code
constexpr uint32_t kAudioBits = 16;
constexpr size_t kParamTextBytes = 4;

// Handed to the platform at every start. UI thread.
MI_HDMI_InitParam g_stCallbackFunc;

// Reserved for HDMI arguments; nothing reads or writes it.
[[gnu::used]] uint32_t g_stHdmiArgs;

/**
 * A callback parameter as text. It usually points at a 32-bit word, so no more than four bytes of
 * it may be read, fewer when a zero byte comes first.
 */
struct ParamText {
    char text[8];

    explicit ParamText(const void *param) : text{}
    {
        if (param == nullptr) {
            std::memcpy(text, "(null)", sizeof "(null)");
            return;
        }
        const char *bytes = static_cast<const char *>(param);
        for (size_t i = 0; i < kParamTextBytes && bytes[i] != '\0'; ++i)
            text[i] = bytes[i];
    }
};

/** A call in the monitor's callback: what was called is not printed. The call's code. */
#define failed_event(call) failed_call(call, log_code(kSource, "return value is not MI_SUCCESS, 0x%x!\n"))

/** A monitor came: what it can do is only reported, and the attributes in force are written again. */
void apply_to_new_monitor(uint32_t device)
{
    MI_HDMI_SinkInfo sink = {};
    MI_HDMI_Attr attr = {};
    log_line(MI_HDMI_GetSinkInfo(device, &sink) == 0 ? "get sink caps success!" : "get sink caps failed!");
    if (failed_event(MI_HDMI_GetAttr(device, &attr))) return;
    if (failed_event(MI_HDMI_SetAttr(device, &attr))) return;
    MI_HDMI_Start(device);
}

} // namespace

uint32_t vo_hdmi_start(uint32_t)
{
    g_stCallbackFunc.callback = Hdmi_callback;
    g_stCallbackFunc.user_param = nullptr;
    log_failure(MI_HDMI_Init(&g_stCallbackFunc), log_code(kSource, "MI_HDMI_Init fail =%x\n"));
    log_failure(MI_HDMI_Open(kHdmiDevice), log_code(kSource, "MI_HDMI_Open fail =%x\n"));
    log_line("HDMI start success."); // whatever happened: an open transmitter refuses both calls
    return 0;
}

uint32_t vo_hdmi_stop(void)
{
    MI_HDMI_Stop(kHdmiDevice);
    MI_HDMI_Close(kHdmiDevice);
    MI_HDMI_DeInit();
    return 0;
}

int32_t ST_Hdmi_Start(uint32_t hdmi_dev, uint32_t hdmi_timing)
{
    MI_HDMI_SetAvMute(kHdmiDevice, 1); // no half-configured picture or sound reaches the monitor

    MI_HDMI_Attr attr = {};
    attr.video_enabled = 1;
    attr.video_timing = hdmi_timing;
    attr.audio_enabled = 1;
    attr.audio_sample_rate = kAudioRate48kHz;
    attr.audio_bit_depth = kAudioBits;
    if (failed_test("MI_HDMI_SetAttr(eHdmi, &stAttr)", MI_HDMI_SetAttr(hdmi_dev, &attr))) return 1;
    if (failed_test("MI_HDMI_Start(eHdmi)", MI_HDMI_Start(hdmi_dev))) return 1;

    log_text("MI_HDMI_SetAvMute[%s][%d]\n", __func__, __LINE__);
    MI_HDMI_SetAvMute(kHdmiDevice, 0);
    return 0;
}

int32_t Hdmi_callback(uint32_t, uint32_t event, void *event_param, void *user_param)
{
    log_line("Hdmi_callbackppppppppppppppppppppppppppppppppppppppppppppppppp:");
    log_text("pEventParam=%s:\n", ParamText(event_param).text);
    log_text("pUsrParam=%s:\n", ParamText(user_param).text);

    if (event != MI_HDMI_EVENT_PLUGGED && event != MI_HDMI_EVENT_UNPLUGGED) return 0;
    if (event_param == nullptr) {
        log_line("The pointer is null");
        return 0;
    }
    uint32_t device = 0;
    std::memcpy(&device, event_param, sizeof device);
    if (event == MI_HDMI_EVENT_PLUGGED)
        apply_to_new_monitor(device);
    else
        MI_HDMI_Stop(device);
    return 0;
}
