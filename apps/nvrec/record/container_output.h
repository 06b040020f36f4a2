/*
 * container_output.h - memory into which libavformat writes a container file; from there the file goes to the
 * disk.
 *
 * Threads: one at a time.
 */
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "record/container_file.h"

struct AVIOContext;

namespace nvrec
{

/* A file in memory. Bytes that were taken out are no longer kept. */
class ContainerFile::Output
{
public:
    Output();
    ~Output();
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    /** To write through; null = out of memory. */
    AVIOContext *context() const { return context_; }
    bool has_bytes() const { return !extents_.empty(); }
    std::vector<FileChunk::Extent> take() { return std::exchange(extents_, {}); }

private:
    static int write(void *self, uint8_t *bytes, int size);
    static int64_t seek(void *self, int64_t offset, int whence);

    AVIOContext *context_;
    std::vector<FileChunk::Extent> extents_;
    int64_t at_ = 0, size_ = 0;
};

} // namespace nvrec
