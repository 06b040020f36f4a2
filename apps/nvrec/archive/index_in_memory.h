/*
 * index_in_memory.h - records into a directory whose index cannot be opened, because the disk is full or the
 * index belongs to another user. An index in memory, made from the files, takes its place until the
 * directory's index can be opened again.
 *
 * Pins exist only in the directory's index. Before recordings are deleted the pins are read from it; when
 * they cannot be read, nothing is deleted.
 *
 * Threads: the one that has the index.
 */
#pragma once

#include <string>

#include "archive/index.h"

namespace nvrec
{

/**
 * Copy the pins of the directory's index, as they are now, into an index in memory. Each pin goes to all
 * cameras of its channel, since files from before a camera had a name may belong to another camera there.
 * Nothing is written to the disk, so that it works on a full one.
 * @return false = they cannot be read
 */
bool bring_pins(Index *index);

/**
 * Open the directory's index, write the contents of the index in memory into it, and remove the entries of
 * files that are gone. Then *index is the directory's.
 * @param index  an index in memory, of a directory that this process records into
 * @return empty, or why not: *index is as it was
 */
std::string return_to_file(Index *index);

} // namespace nvrec
