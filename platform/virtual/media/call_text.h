/*
 * call_text.h - arguments and results of platform calls as text, for the call trace. Numbers stand
 * as they are, records in braces, addresses of data as "data". A record that the call fills is
 * written after the call, and as "-" when the call did not fill it. Encoded bytes and sound stand as
 * their CRC-32 (that of zlib and PNG) when the call took them, otherwise as "-".
 */
#ifndef VBOARD_CALL_TEXT_H
#define VBOARD_CALL_TEXT_H

#include <cstdint>
#include <string>

#include "mi_ao.h"
#include "mi_common.h"
#include "mi_disp.h"
#include "mi_divp.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "mi_venc.h"

namespace vboard
{

const char *reason_text(MI_Reason reason);
std::string code_text(int64_t code); // 0 and positive: decimal; negative: -1 or 0x...

void describe(std::string &text, uint32_t value, bool filled);
void describe(std::string &text, int32_t value, bool filled);
void describe(std::string &text, uint64_t value, bool filled);
void describe(std::string &text, const char *value, bool filled);
void describe(std::string &text, const void *value, bool filled);

// What goes in.
void describe(std::string &text, const MI_SYS_ChnPort *value, bool filled);
void describe(std::string &text, const MI_VDEC_ChnAttr *value, bool filled);
void describe(std::string &text, const MI_VDEC_Stream *value, bool filled);
void describe(std::string &text, const MI_VDEC_OutputPortAttr *value, bool filled);
void describe(std::string &text, const MI_DISP_PubAttr *value, bool filled);
void describe(std::string &text, const MI_DISP_VideoLayerAttr *value, bool filled);
void describe(std::string &text, const MI_DISP_InputPortAttr *value, bool filled);
void describe(std::string &text, const MI_Rect *value, bool filled);
void describe(std::string &text, const MI_HDMI_Attr *value, bool filled);
void describe(std::string &text, const MI_HDMI_InitParam *value, bool filled);
void describe(std::string &text, const MI_AO_PubAttr *value, bool filled);
void describe(std::string &text, const MI_AO_AdecAttr *value, bool filled);
void describe(std::string &text, const MI_AO_Frame *value, bool filled);
void describe(std::string &text, const MI_DIVP_ChnAttr *value, bool filled);
void describe(std::string &text, const MI_DIVP_OutputPortAttr *value, bool filled);
void describe(std::string &text, const MI_VENC_ChnAttr *value, bool filled);
void describe(std::string &text, const MI_VENC_JpegParam *value, bool filled);

// What comes out.
void describe(std::string &text, const MI_VDEC_ChnStat *value, bool filled);
void describe(std::string &text, const MI_SYS_Version *value, bool filled);
void describe(std::string &text, const MI_HDMI_SinkInfo *value, bool filled);
void describe(std::string &text, const MI_VENC_Stream *value, bool filled);
void describe(std::string &text, const uint64_t *value, bool filled);
void describe(std::string &text, const uint32_t *value, bool filled);

// An address that is not const is a record to fill: read it only when the call succeeded.
template <typename Record> void describe(std::string &text, Record *value, bool filled)
{
    if (filled)
        describe(text, static_cast<const Record *>(value), filled);
    else
        text += value != nullptr ? "-" : "null";
}

} // namespace vboard

#endif
