/*
 * index_in_memory.h - recording while the index of a directory cannot be opened, because its disk is
 * full or it is another user's: an index in memory stands for it and is made from the files, until the
 * one of the directory can be opened again.
 *
 * Pins stand in the directory's index alone, so whoever deletes recordings brings them in first, and
 * deletes nothing where they cannot be read.
 *
 * Threads: the one that has the index.
 */
#pragma once

#include <string>

#include "archive/index.h"

namespace nvrec
{

/**
 * Give an index in memory the pins of the directory's, as they are now: each to all cameras of its
 * channel, since files of before a camera had a name may be another one's in memory. Nothing is written
 * for that, so that it can be done on a full disk.
 * @return false = they cannot be read
 */
bool bring_pins(Index *index);

/**
 * Open the directory's index, write into it what the one in memory holds, and take entries of files
 * out that have gone; then *index is that of the directory.
 * @param index  in memory, of a directory that this process records into
 * @return empty, or why not: *index is as it was
 */
std::string return_to_file(Index *index);

} // namespace nvrec
