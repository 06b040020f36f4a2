/*
 * loss_count.h - counts the packets that a network camera sent and that did not come. libavformat sees them
 * by their sequence numbers and writes them only into its log, so the log is read here.
 *
 * Included by packet_source*.cpp alone. Threads: any.
 */
#pragma once

struct AVFormatContext;

namespace nvrec
{

class PacketSource;

/** From now on, count the lost packets of a format, which is about to be opened, in its source. */
void count_losses(AVFormatContext *format, PacketSource *source);

} // namespace nvrec
