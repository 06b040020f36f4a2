/* record_chunks.h - files of the disk writer, and chunks for them, without cameras. For tests. */
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "record/disk_writer.h"

namespace nvrec_test
{

/** "NAME.mkv", of which nothing has been written. */
inline std::shared_ptr<nvrec::OutputFile> file_named(const std::string &name)
{
    auto file = std::make_shared<nvrec::OutputFile>();
    file->stream = "main";
    file->name = name;
    file->ending = ".mkv";
    file->tally = std::make_shared<nvrec::OutputTally>();
    return file;
}

/** A picture of so many bytes at a place. */
inline nvrec::FileChunk picture_at(int64_t at, size_t bytes)
{
    nvrec::FileChunk chunk;
    chunk.extents.push_back({at, std::vector<uint8_t>(bytes, 'x')});
    chunk.pictures = 1;
    return chunk;
}

} // namespace nvrec_test
