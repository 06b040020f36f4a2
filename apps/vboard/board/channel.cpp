/* channel.cpp - see channel.h. */
#include "board/channel.h"

#include <cstring>

#include <nlohmann/json.hpp>

namespace vboard_app
{
namespace
{

constexpr size_t kHeader = 8;      // bytes
constexpr size_t kRoom = 64 << 10; // bytes to read at once, at least

uint32_t count_at(const uint8_t *bytes)
{
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

void append_count(std::string *bytes, size_t count)
{
    for (int shift = 0; shift < 32; shift += 8)
        bytes->push_back(static_cast<char>(count >> shift & 0xFF));
}

} // namespace

std::string packed_message(const nlohmann::json &message)
{
    // Texts from outside may hold bytes that are no UTF-8: they must not end the process.
    const std::string text = message.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    std::string bytes;
    append_count(&bytes, text.size());
    append_count(&bytes, 0);
    return bytes + text;
}

uint8_t *MessageReader::room(size_t *size)
{
    if (begin_ == end_) begin_ = end_ = 0;
    if (bytes_.size() - end_ < kRoom) {
        if (begin_ > 0) {
            std::memmove(bytes_.data(), bytes_.data() + begin_, end_ - begin_);
            end_ -= begin_;
            begin_ = 0;
        }
        // Doubling: a picture of some megabytes is moved a few times, not once for every 64 KiB.
        if (bytes_.size() - end_ < kRoom) bytes_.resize(std::max(2 * bytes_.size(), end_ + kRoom));
    }
    *size = bytes_.size() - end_;
    return bytes_.data() + end_;
}

void MessageReader::filled(size_t bytes)
{
    end_ += bytes;
}

bool MessageReader::next(Message *message)
{
    if (broken_ || end_ - begin_ < kHeader) return false;
    const uint8_t *first = bytes_.data() + begin_;
    const size_t json_bytes = count_at(first);
    const size_t blob_bytes = count_at(first + 4);
    if (json_bytes > kLongestJson || blob_bytes > kLongestBlob) {
        broken_ = true;
        return false;
    }
    if (end_ - begin_ < kHeader + json_bytes + blob_bytes) return false;
    const uint8_t *text = first + kHeader;
    message->json.assign(reinterpret_cast<const char *>(text), json_bytes);
    message->blob.assign(text + json_bytes, text + json_bytes + blob_bytes);
    begin_ += kHeader + json_bytes + blob_bytes;
    return true;
}

} // namespace vboard_app
