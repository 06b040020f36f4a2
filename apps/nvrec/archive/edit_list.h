/* edit_list.h - sets which part of an MP4 file players show, in a file that is written already. */
#pragma once

#include <cstdint>
#include <string>

namespace nvrec
{

/**
 * Let every track of a file end after so long, counted from where its edit list begins.
 * @return empty, or why not.
 */
std::string set_shown_length(const std::string &path, int64_t length_us);

} // namespace nvrec
