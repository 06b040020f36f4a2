/*
 * channel.h - messages between the agent and `vboard run`, on one end of a pair of stream sockets.
 *
 * A message is two 32-bit little-endian lengths in bytes, that of its JSON text and that of the bytes
 * behind it, then both. JSON, of the host:
 *
 *     {"id": N, "do": "<request of api/v1.json>", "with": {...}}
 *
 * and of the agent, an answer to each request and events in between:
 *
 *     {"id": N, "ok": {...}}   {"id": N, "error": {"code", "message", "parameter"?}}
 *     {"event": "...", "data": {...}}
 *
 * Requests that only the host makes stand in requests.h. Events: "hello" {linked, version, pid}, the first
 * message; "watchdog" {expired_at_us}; "calls" {calls: [{time_us, duration_us, thread, name, failed,
 * arguments, result, text}], lost}, where text is the line of a timed trace; "refusal" {text, lost}.
 */
#ifndef VBOARD_REMOTE_CHANNEL_H
#define VBOARD_REMOTE_CHANNEL_H

#include <cstdint>
#include <string>
#include <vector>

namespace vboard_remote
{

using Bytes = std::vector<uint8_t>;

/* One reader and one writer at a time. The descriptor stays the caller's. */
class Channel
{
public:
    explicit Channel(int descriptor) : descriptor_(descriptor) {}

    /* Wait for a message. False: the other end is gone, or what it sent is no message. */
    bool read(std::string &text);

    /* False: the other end is gone. */
    bool write(const std::string &text, const Bytes &blob);

private:
    bool read_all(void *bytes, size_t size);
    bool write_all(const void *bytes, size_t size);

    const int descriptor_;
};

} // namespace vboard_remote

#endif
