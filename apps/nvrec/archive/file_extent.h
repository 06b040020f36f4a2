/*
 * file_extent.h - finds out how much of a recording is there: how long it is, and where its last whole
 * fragment ends. It reads the structure of the file only, and no pictures.
 *
 *   MP4  ftyp moov { moof mdat }* [mfra]        a fragment is a moof and its mdat
 *   MKV  EBML Segment { Info Tracks Cluster* [Cues] }   a fragment is a cluster
 *
 * Each fragment takes a read or two. A file whose head tells its whole length takes no more than that.
 *
 * Threads: any.
 */
#pragma once

#include <cstdint>
#include <string>

namespace nvrec
{

struct FileExtent {
    bool readable = false;     /* its head is there and says what it holds                      */
    std::string problem;       /* why not                                                       */
    int64_t duration_us = 0;   /* of the pictures in whole fragments, from the file's start on  */
    int64_t bytes = 0;         /* of the file                                                   */
    int64_t whole_bytes = 0;   /* up to the end of the last whole fragment                      */
    bool in_fragments = false; /* at least one fragment is whole: the file can be cut behind it */
    int64_t from_us = 0;       /* time of day of the file's start; 0 = its head does not say    */
    std::string title;         /* as its head says; recordings have their camera's name there   */
    /** Whether it has a head and nothing after it: power was lost before the first fragment. */
    bool empty() const { return readable && duration_us == 0 && !in_fragments; }
    bool torn() const { return readable && whole_bytes < bytes; }
};

FileExtent extent_of(const std::string &path);

} // namespace nvrec
