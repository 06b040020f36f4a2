/* recorder_index.cpp - see recorder_index.h. */
#include "record/recorder_index.h"

#include <utility>

namespace nvrec
{
namespace
{

constexpr auto kOpenLimit = std::chrono::seconds(10);
constexpr auto kRoomLimit = std::chrono::seconds(10);

} // namespace

RecorderIndex::RecorderIndex(std::string directory, std::map<int, std::string> names,
                             IndexWriter::Teller on_line)
    : directory_(std::move(directory)), on_line_(std::move(on_line)), names_(std::move(names))
{
}

RecorderHooks RecorderIndex::hooks(bool recycle)
{
    RecorderHooks hooks;
    hooks.hold_directory = [this] { return hold(); };
    hooks.files.begun = [this](const std::string &path, const OutputFile &file) {
        if (const auto index = writer())
            index->segment_begun({file.channel, name_of(file.channel), file.stream, path, file.from_us,
                                  file.from_us, 0, false});
    };
    hooks.files.grown = [this](const std::string &path, int64_t until_us, uint64_t bytes) {
        if (const auto index = writer()) index->segment_grown(path, until_us, static_cast<int64_t>(bytes));
    };
    hooks.files.ended = [this](const std::string &path, int64_t until_us, uint64_t bytes) {
        if (const auto index = writer()) index->segment_ended(path, until_us, static_cast<int64_t>(bytes));
    };
    hooks.files.removed = [this](const std::string &path) {
        if (const auto index = writer()) index->segment_removed(path);
    };
    hooks.gap = [this](int channel, const std::string &stream, int64_t from_us, int64_t to_us,
                       const std::string &why) {
        if (const auto index = writer()) index->gap({channel, name_of(channel), stream, from_us, to_us, why});
    };
    hooks.event = [this](const RecordedEvent &event) {
        if (const auto index = writer())
            index->event({event.channel, name_of(event.channel), event.at_us, event.kind, event.text});
    };
    if (recycle)
        hooks.free_space = [this](uint64_t bytes, bool in_vain) {
            const auto index = writer();
            return index && index->free_space(static_cast<int64_t>(bytes), kRoomLimit, in_vain);
        };
    return hooks;
}

/* On the disk writer's thread, the only one that may wait for the disk. */
std::string RecorderIndex::hold()
{
    auto fresh = std::make_shared<IndexWriter>(on_line_);
    RetentionOptions retention;
    {
        const std::scoped_lock guard(lock_);
        writer_.reset();
        retention = retention_;
    }
    fresh->start(directory_, retention);
    const std::string problem = fresh->wait_open(kOpenLimit);
    const std::string place = directory_ + ": "; /* who asks knows it */
    if (!problem.empty()) return problem.starts_with(place) ? problem.substr(place.size()) : problem;
    const std::scoped_lock guard(lock_);
    writer_ = std::move(fresh);
    return {};
}

std::shared_ptr<IndexWriter> RecorderIndex::writer() const
{
    const std::scoped_lock guard(lock_);
    return writer_;
}

std::string RecorderIndex::name_of(int channel) const
{
    const std::scoped_lock guard(lock_);
    const auto found = names_.find(channel);
    return found != names_.end() ? found->second : std::string();
}

void RecorderIndex::set_name(int channel, const std::string &name)
{
    const std::scoped_lock guard(lock_);
    names_.insert_or_assign(channel, name);
}

void RecorderIndex::set_retention(const RetentionOptions &retention)
{
    const std::scoped_lock guard(lock_);
    retention_ = retention;
    if (writer_) writer_->set_retention(retention);
}

RetentionState RecorderIndex::retention_state() const
{
    const auto index = writer();
    return index ? index->retention_state() : RetentionState();
}

void RecorderIndex::stop(std::chrono::milliseconds limit)
{
    if (const auto index = writer(); index && !index->stop(limit))
        on_line_(true, "the index lacks what was recorded last: the disk does not answer");
}

} // namespace nvrec
