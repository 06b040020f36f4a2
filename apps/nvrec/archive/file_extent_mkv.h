/* file_extent_mkv.h - see file_extent.h: the part for Matroska files. */
#pragma once

#include "archive/file_bytes.h"
#include "archive/file_extent.h"

namespace nvrec
{

bool is_mkv(const ReadFile &file);
FileExtent mkv_extent(const ReadFile &file);

} // namespace nvrec
