/*
 * channel.h - messages between the board's process and the agent in the program.
 *
 * A stream socket carries them one behind the other: a 32-bit count of JSON bytes and one of further
 * bytes, both little endian, the JSON, the further bytes (a picture).
 *
 *   to the agent    {"id": N, "do": "<request>", "with": {...}}
 *   from the agent  {"id": N, "ok": {...}} or {"id": N, "error": {"code", "message", "parameter"?}}
 *                   {"event": "...", "data": {...}}
 *
 * Not thread-safe.
 */
#ifndef VBOARD_APP_CHANNEL_H
#define VBOARD_APP_CHANNEL_H

#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace vboard_app
{

constexpr size_t kLongestJson = 16u << 20; // bytes; more is no message of the agent
constexpr size_t kLongestBlob = 64u << 20;

struct Message {
    std::string json;
    std::vector<uint8_t> blob;
};

/* A message as it goes over the socket. */
std::string packed_message(const nlohmann::json &message);

/* Takes messages out of the bytes that arrive. */
class MessageReader
{
public:
    /* Room for bytes to be read into; tell how many came by filled(). */
    uint8_t *room(size_t *size);
    void filled(size_t bytes);

    /* The next whole message. False: more bytes are needed, or the stream is broken(). */
    bool next(Message *message);

    /* A message was longer than any is: what follows cannot be understood. */
    bool broken() const { return broken_; }

private:
    std::vector<uint8_t> bytes_;
    size_t begin_ = 0, end_ = 0; // of what was read and not taken yet
    bool broken_ = false;
};

} // namespace vboard_app

#endif
