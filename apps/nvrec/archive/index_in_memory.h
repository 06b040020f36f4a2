/*
 * index_in_memory.h - recording while the index of a directory cannot be opened, because its disk is
 * full or it is another user's: an index in memory stands for it and is made from the files, until the
 * one of the directory can be opened again.
 *
 * Pins stand in the directory's index alone, so whoever deletes recordings asks Index::in_memory() first.
 *
 * Threads: the one that has the index.
 */
#pragma once

#include <string>

#include "archive/index.h"

namespace nvrec
{

/**
 * Open the directory's index, write into it what the one in memory holds, and take entries of files
 * out that have gone; then *index is that of the directory.
 * @param index  in memory, of a directory that this process records into
 * @return empty, or why not: *index is as it was
 */
std::string return_to_file(Index *index);

} // namespace nvrec
