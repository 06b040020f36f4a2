/* record_files.h - recordings looked at from outside: by the ffmpeg tools, and box by box. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/** Checksums of a file's decoded pictures, in the order in which they are shown. */
std::vector<std::string> picture_checksums(const std::string &path);

/** Presentation times of its pictures in that order, seconds. */
std::vector<double> picture_times(const std::string &path);

/** What ffprobe says of one entry of a file's stream; `stream` is "v:0", "a:0". */
std::string probe(const std::string &path, const std::string &stream, const std::string &entry);

/** Whether its first picture is a key frame. */
bool begins_with_key_frame(const std::string &path);

/** The recorder's files of one stream in a directory, oldest first: names that begin with `prefix`. */
std::vector<std::string> files_of(const std::string &directory, const std::string &prefix);

/** The fragments of an MP4 file that stand in it whole, and the samples of its first track in them. */
struct Fragments {
    int whole = 0;
    int pictures = 0;
};
Fragments fragments_of(const std::string &path);

/** A number of one row of "recordings" in the report of --json; -1 when absent. */
double recorded(const std::string &json, int channel, const std::string &stream, const std::string &name);
