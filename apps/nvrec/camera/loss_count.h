/*
 * loss_count.h - packets that a network camera sent and that did not come. libavformat knows it from
 * their sequence numbers and tells nobody but its log, so its log is listened to.
 *
 * Included by packet_source*.cpp alone. Threads: any.
 */
#pragma once

struct AVFormatContext;

namespace nvrec
{

class PacketSource;

/** Have the losses of a format that is about to be opened counted by its source. */
void count_losses(AVFormatContext *format, PacketSource *source);

} // namespace nvrec
