/* module_options.h - the command line of what runs beside a wall: controls, zoom, sound. */
#pragma once

namespace CLI
{
class App;
} // namespace CLI

namespace nvrec
{

struct ControlOptions;
struct ListenOptions;
struct ZoomOptions;

/* They are filled when the subcommand is parsed, and live as long as the parser. */
void add_control_options(CLI::App &command, ControlOptions &options);
void add_zoom_options(CLI::App &command, ZoomOptions &options);
void add_listen_options(CLI::App &command, ListenOptions &options);

} // namespace nvrec
