/* channel.cpp - see channel.h. */
#include "channel.h"

#include <cerrno>
#include <poll.h>
#include <sys/socket.h>

namespace vboard_remote
{
namespace
{

constexpr uint32_t kLongestText_bytes = 1 << 20; // of a request; the host takes no more than 64 KiB

uint32_t number_at(const uint8_t *bytes)
{
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

void put_number(uint8_t *bytes, size_t number)
{
    for (int byte = 0; byte < 4; ++byte)
        bytes[byte] = static_cast<uint8_t>(number >> 8 * byte);
}

// Whether it is worth trying again. The other process may have made the socket non-blocking.
bool wait_after(int descriptor, short events)
{
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    pollfd waiting = {descriptor, events, 0};
    return poll(&waiting, 1, -1) >= 0 || errno == EINTR;
}

} // namespace

bool Channel::read_all(void *bytes, size_t size)
{
    auto *at = static_cast<uint8_t *>(bytes);
    while (size > 0) {
        const ssize_t got = recv(descriptor_, at, size, 0);
        if (got == 0) return false;
        if (got < 0) {
            if (!wait_after(descriptor_, POLLIN)) return false;
            continue;
        }
        at += got;
        size -= static_cast<size_t>(got);
    }
    return true;
}

bool Channel::write_all(const void *bytes, size_t size)
{
    const auto *at = static_cast<const uint8_t *>(bytes);
    while (size > 0) {
        const ssize_t sent = send(descriptor_, at, size, MSG_NOSIGNAL);
        if (sent < 0) {
            if (!wait_after(descriptor_, POLLOUT)) return false;
            continue;
        }
        at += sent;
        size -= static_cast<size_t>(sent);
    }
    return true;
}

bool Channel::read(std::string &text)
{
    uint8_t lengths[8];
    if (!read_all(lengths, sizeof lengths)) return false;
    const uint32_t text_bytes = number_at(lengths);
    const uint32_t blob_bytes = number_at(lengths + 4);
    if (text_bytes > kLongestText_bytes || blob_bytes != 0) return false; // no request has a blob
    text.resize(text_bytes);
    return read_all(text.data(), text.size());
}

bool Channel::write(const std::string &text, const Bytes &blob)
{
    uint8_t lengths[8];
    put_number(lengths, text.size());
    put_number(lengths + 4, blob.size());
    return write_all(lengths, sizeof lengths) && write_all(text.data(), text.size()) &&
           write_all(blob.data(), blob.size());
}

} // namespace vboard_remote
