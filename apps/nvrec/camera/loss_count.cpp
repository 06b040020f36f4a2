/* loss_count.cpp - see loss_count.h. */
#include "camera/loss_count.h"

#include <cstdarg>
#include <cstring>
#include <mutex>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

#include "camera/packet_source.h"

namespace nvrec
{
namespace
{

constexpr char kMissed[] = "RTP: missed %d packets";

void listen(void *object, int level, const char *format, va_list arguments)
{
    if (object && std::strncmp(format, kMissed, sizeof kMissed - 1) == 0 &&
        *static_cast<const AVClass *const *>(object) == avformat_get_class()) {
        auto *source = static_cast<PacketSource *>(static_cast<AVFormatContext *>(object)->opaque);
        va_list copy;
        va_copy(copy, arguments);
        const int packets = va_arg(copy, int); // NOLINT(clang-analyzer-valist.Uninitialized): copied above
        va_end(copy);
        if (source && packets > 0) source->add_missed(static_cast<uint64_t>(packets));
    }
    av_log_default_callback(object, level, format, arguments);
}

} // namespace

void count_losses(AVFormatContext *format, PacketSource *source)
{
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_callback(listen); });
    format->opaque = source;
}

} // namespace nvrec
