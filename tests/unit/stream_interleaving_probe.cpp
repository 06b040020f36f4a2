/* See stream_interleaving_probe.h. */
#include "stream_interleaving_probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace stream_probe
{
namespace
{

WriterRun *g_run; // the one that the pool's accesses are reported to

} // namespace

void before_load(const void *address, size_t size)
{
    if (g_run && g_run->is_exploring_) g_run->choose_version(address, size);
}

void after_store()
{
    if (g_run && g_run->is_recording_) g_run->record();
    if (g_run && !g_run->is_recording_) ADD_FAILURE() << "a reader stored in shared memory";
}

void frame_begins() {}

WriterRun::WriterRun(const Sizes &sizes, const std::vector<Frame> &frames)
    : frames_(frames), first_lap_(sizes.first_lap)
{
    StreamPoolConfig config{};
    config.channel_count = 1;
    config.channels[0] = {sizes.max_frame_bytes, sizes.data_bytes, sizes.index_num};
    EXPECT_EQ(kx_stream_init_avstream(&config, 0), 0);
    channel_ = nvrhal::find_stream_channel(0, 0);
    channel_->max_frame_len = channel_->safe_diff = sizes.max_frame_bytes; // below the floor of 80
    channel_->data_circle = channel_->index_circle = sizes.first_lap;
    regions_[0] = {reinterpret_cast<uint8_t *>(channel_), sizeof *channel_};
    regions_[1] = {reinterpret_cast<uint8_t *>(channel_->p_stream_index),
                   static_cast<size_t>(channel_->index_num) * sizeof(StreamIndexEntry)};
    regions_[2] = {channel_->p_buf_data, static_cast<size_t>(channel_->data_size)};
    std::memset(channel_->p_buf_data, 0, static_cast<size_t>(channel_->data_size));

    g_run = this;
    is_recording_ = true;
    record();
    published_.push_back(0);
    positions_.push_back(0);
    int64_t lap = 0;
    for (uint32_t i = 0; i < frames.size(); ++i) {
        StreamProducerFrame frame{};
        uint8_t bytes[16];
        for (uint32_t k = 0; k < frames[i].length; ++k)
            bytes[k] = byte_of(i, k);
        frame.frame_type = frames[i].type;
        frame.piece_count = 1;
        frame.piece_lengths[0] = frames[i].length;
        frame.pieces[0] = bytes;
        frame.timestamp = i;
        const uint32_t lap_before = channel_->data_circle;
        EXPECT_EQ(kx_stream_sendFrameToPool(&frame, 0), 0);
        lap += channel_->data_circle - lap_before;
        published_.push_back(static_cast<int>(images_.size()) - 1);
        positions_.push_back(lap * channel_->data_size + channel_->data_pos);
    }
    is_recording_ = false;
    version_ = static_cast<int>(images_.size()) - 1;
}

WriterRun::~WriterRun()
{
    g_run = nullptr;
    kx_stream_destroy_avstream();
}

void WriterRun::record()
{
    std::vector<uint8_t> image;
    for (const Region &region : regions_)
        image.insert(image.end(), region.at, region.at + region.size);
    images_.push_back(std::move(image));
}

void WriterRun::show(int version)
{
    if (version == version_) return;
    const uint8_t *from = images_[static_cast<size_t>(version)].data();
    for (const Region &region : regions_) {
        std::memcpy(region.at, from, region.size);
        from += region.size;
    }
    version_ = version;
}

void WriterRun::choose_version(const void *address, size_t size)
{
    size_t offset = 0;
    for (const Region &region : regions_) {
        const auto *at = static_cast<const uint8_t *>(address);
        if (at >= region.at && at + size <= region.at + region.size) {
            offset += static_cast<size_t>(at - region.at);
            break;
        }
        offset += region.size;
    }
    const bool is_look = address == &channel_->cur_index;
    if (!has_looked_ && !is_look) return; // constants and what lies before the look

    std::vector<int> &options = scratch_;
    options.assign(1, version_);
    for (int v = version_ + 1; v <= limit_; ++v) {
        const auto &before = images_[static_cast<size_t>(v - 1)], &after = images_[static_cast<size_t>(v)];
        if (std::memcmp(&before[offset], &after[offset], size) != 0) options.push_back(v);
    }
    if (options.size() > 1) {
        if (next_choice_ == choices_.size()) {
            choices_.push_back(0);
            options_.push_back(options);
        }
        show(options[static_cast<size_t>(choices_[next_choice_])]);
        ++next_choice_;
    }
    if (is_look && !has_looked_) {
        has_looked_ = true;
        look_ = -1;
        while (look_ + 1 < frame_count() && published(look_ + 1) <= version_)
            ++look_;
        limit_ = std::max(version_, (*limit_of_look_)(look_));
    }
}

void WriterRun::every_call(int newest, const StreamReader &reader, const std::function<int(int)> &limit,
                           const std::function<int32_t(StreamReader *)> &call,
                           const std::function<void(int32_t, const StreamReader &, int, int)> &done)
{
    limit_of_look_ = &limit;
    is_exploring_ = true;
    choices_.clear();
    options_.clear();
    for (;;) {
        show(published(newest));
        limit_ = published(frame_count() - 1);
        has_looked_ = false;
        next_choice_ = 0;
        StreamReader at = reader;
        const int32_t result = call(&at);
        done(result, at, look_, version_);
        // The next combination of choices, the last load's first.
        while (!choices_.empty() && choices_.back() + 1 == static_cast<int>(options_.back().size())) {
            choices_.pop_back();
            options_.pop_back();
        }
        if (choices_.empty()) break;
        ++choices_.back();
    }
    is_exploring_ = false;
}

} // namespace stream_probe
