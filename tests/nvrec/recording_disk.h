/*
 * recording_disk.h - the disk writer over a stand-in for the system's calls, which counts bytes or lets a
 * call wait. For tests.
 */
#pragma once

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "archive/intake.h"
#include "camera/input.h"
#include "nvrec_run.h"
#include "record/container_file.h"
#include "record/disk_writer.h"
#include "record/parameter_sets.h"

namespace nvrec_test
{

using namespace nvrec; // NOLINT(google-build-using-namespace): for tests

inline std::string clip(const std::string &name)
{
    return std::string(NVREC_CLIPS) + "/" + name;
}

/* A disk of so many bytes; and one whose calls wait while it hangs. */
class StandInDisk : public FileSystem
{
public:
    explicit StandInDisk(int64_t free_bytes = INT64_MAX) : free_bytes_(free_bytes) {}
    ~StandInDisk() override { let_go(); }

    int write(int descriptor, std::span<const uint8_t> bytes, int64_t at) override
    {
        wait_while_it_hangs();
        struct stat before = {};
        fstat(descriptor, &before);
        const int64_t room_until = before.st_size + std::min<int64_t>(free_bytes_, 1 << 30);
        const auto fits = static_cast<size_t>(std::clamp<int64_t>(room_until - at, 0, std::ssize(bytes)));
        free_bytes_ -= std::max<int64_t>(0, at + static_cast<int64_t>(fits) - before.st_size);
        const int error = FileSystem::write(descriptor, bytes.subspan(0, fits), at);
        if (error != 0) return error;
        return fits < bytes.size() ? ENOSPC : 0;
    }

    int truncate(int descriptor, int64_t size) override
    {
        struct stat before = {};
        fstat(descriptor, &before);
        free_bytes_ += before.st_size - size;
        return FileSystem::truncate(descriptor, size);
    }

    int sync(int descriptor) override
    {
        ++syncs;
        syncs.notify_all();
        return FileSystem::sync(descriptor);
    }

    void hang()
    {
        const std::scoped_lock guard(lock_);
        hangs_ = true;
    }
    void let_go()
    {
        const std::scoped_lock guard(lock_);
        hangs_ = false;
        changed_.notify_all();
    }
    void wait_until_it_is_called()
    {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [this] { return waiting_; });
    }
    void add_room(int64_t bytes) { free_bytes_ += bytes; }
    std::atomic<int> syncs = 0;

private:
    void wait_while_it_hangs()
    {
        std::unique_lock guard(lock_);
        waiting_ = hangs_;
        changed_.notify_all();
        changed_.wait(guard, [this] { return !hangs_; });
        waiting_ = false;
    }

    std::mutex lock_; /* guards what follows */
    std::condition_variable changed_;
    bool hangs_ = false, waiting_ = false;
    std::atomic<int64_t> free_bytes_;
};

class NvrecDisk : public testing::Test
{
protected:
    void open(const std::shared_ptr<StandInDisk> &disk, std::function<bool(uint64_t, bool)> free_space = {})
    {
        DiskWriterOptions options;
        options.directory = scratch_.file("files");
        options.files = disk_ = disk;
        options.free_space = std::move(free_space);
        options.most_queued_bytes = 1 << 20;
        writer_ = std::make_unique<DiskWriter>(std::move(options));
    }

    std::shared_ptr<OutputFile> new_file(const std::string &name, Container container)
    {
        auto file = std::make_shared<OutputFile>();
        file->stream = "main";
        file->name = name;
        file->ending = file_ending(container);
        file->tally = tally_;
        return file;
    }

    /* A clip's pictures through a container into a file, as a recording does it. */
    std::shared_ptr<OutputFile> write_clip(const std::string &source, Container container,
                                           const std::string &name)
    {
        Input input(clip(source));
        AccessUnit unit;
        EXPECT_TRUE(input.open(std::chrono::seconds(10))) << input.error();
        ContainerFile muxer;
        const auto file = new_file(name, container);
        while (input.read(&unit) == Input::Read::kUnit) {
            if (!muxer.is_open()) {
                TrackFacts facts = {input.facts(), parameter_sets_of(unit.bytes, input.facts().codec),
                                    nullptr};
                EXPECT_TRUE(muxer.open(container, facts, unit.due_us)) << muxer.error();
            }
            EXPECT_TRUE(muxer.write_video(unit.bytes, unit.pts_us, unit.due_us, unit.key));
            pass(file, muxer.take_output());
        }
        EXPECT_TRUE(muxer.close());
        pass(file, muxer.take_output());
        writer_->end(file);
        return file;
    }

    void pass(const std::shared_ptr<OutputFile> &file, FileChunk chunk)
    {
        if (!chunk.empty()) writer_->append(file, std::move(chunk), 0);
    }

    FileChunk bytes(size_t count)
    {
        FileChunk chunk;
        chunk.extents.push_back({at_, std::vector<uint8_t>(count, 'x')});
        chunk.pictures = 1;
        at_ += static_cast<int64_t>(count);
        return chunk;
    }

    /* Pictures of a file that a reader gets out; -1 = it cannot be opened. */
    static int pictures_in(const std::string &path)
    {
        Input input(path);
        if (!input.open(std::chrono::seconds(10))) return -1;
        AccessUnit unit;
        int count = 0;
        while (input.read(&unit) == Input::Read::kUnit)
            ++count;
        return count;
    }

    /* What the next recorder does with the directory. */
    IntakeResult start_again() const
    {
        Index index;
        EXPECT_EQ(index.open_in_memory(scratch_.file("files")), "");
        return take_in(index, list_recordings(scratch_.file("files")), {.repair = true});
    }

    std::vector<std::string> left_files() const
    {
        std::vector<std::string> paths;
        for (const auto &entry : std::filesystem::directory_iterator(scratch_.file("files")))
            paths.push_back(entry.path());
        return paths;
    }

    ScratchDirectory scratch_;
    std::shared_ptr<StandInDisk> disk_;
    std::shared_ptr<OutputTally> tally_ = std::make_shared<OutputTally>();
    std::unique_ptr<DiskWriter> writer_;
    int64_t at_ = 0;
};

} // namespace nvrec_test
