/*
 * file_extent.h - how much of a recording is there: how long it is, and where its last whole fragment
 * ends, read from the structure of the file alone, without its pictures.
 *
 *   MP4  ftyp moov { moof mdat }* [mfra]        a fragment is a moof and its mdat
 *   MKV  EBML Segment { Info Tracks Cluster* [Cues] }   a fragment is a cluster
 *
 * A file of an hour takes a read or two a fragment. Files whose whole length stands in their head are
 * done with that.
 *
 * Threads: any.
 */
#pragma once

#include <cstdint>
#include <string>

namespace nvrec
{

struct FileExtent {
    bool readable = false;     /* its head is there and says what it holds                    */
    std::string problem;       /* why not                                                     */
    int64_t duration_us = 0;   /* of the pictures in whole fragments, from the file's start on */
    int64_t bytes = 0;         /* of the file                                                 */
    int64_t whole_bytes = 0;   /* up to the end of the last whole fragment                    */
    bool in_fragments = false; /* with one at least that is whole: can be cut behind it         */
    int64_t from_us = 0;       /* time of day of the file's start; 0 = its head does not say  */
    std::string title;         /* what its head says: a recording has its camera's name there */
    /** It has a head and nothing that follows it: the disk's power went before the first fragment. */
    bool empty() const { return readable && duration_us == 0 && !in_fragments; }
    bool torn() const { return readable && whole_bytes < bytes; }
};

FileExtent extent_of(const std::string &path);

} // namespace nvrec
