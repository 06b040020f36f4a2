/* archive_options.h - what the subcommands that look into a directory of recordings share. */
#pragma once

#include <string>
#include <vector>

#include "archive/archive_reader.h"

namespace CLI
{
class App;
} // namespace CLI

namespace nvrec
{

struct ArchiveOptions {
    std::string directory;
    std::string camera; /* name or channel; empty = all */
    std::string stream = "main";
    std::string from, to, at;
    bool json = false;
};

/** "--dir" and "--camera"; a camera must be named where `one_camera` is wanted. */
void add_archive_options(CLI::App &command, ArchiveOptions &options, bool one_camera);
void add_stream_option(CLI::App &command, ArchiveOptions &options);
/** "--from" and "--to". */
void add_span_options(CLI::App &command, ArchiveOptions &options, bool required);
void add_json_option(CLI::App &command, ArchiveOptions &options);

/** A directory opened, and the cameras found that are meant; complains. @return an ExitCode */
int open_archive_for(const ArchiveOptions &options, Archive *archive, std::vector<CameraRow> *cameras);

/** The span that --from and --to name; complains. @return an ExitCode */
int read_span(const ArchiveOptions &options, TimeSpan *span);

/** A time that an option names; complains. */
std::optional<int64_t> time_given(const char *option, const std::string &text,
                                  std::optional<int64_t> from_us = std::nullopt);

/** What is to be said of a file that is not finished: a recorder writes it, or its end is torn. Else empty.
 */
std::string file_state(const SegmentRow &row, const std::string &directory);

/** Complain on standard error. @return the code */
int complain(int exit_code, const std::string &line);

} // namespace nvrec
