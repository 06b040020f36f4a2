/* board_command.cpp - "nvrec board": the state of the board as a table. */
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "console/terminal.h"
#include "controls/board_state.h"
#include "controls/control_socket.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

constexpr int kCameras = 4;

struct BoardOptions {
    std::string socket;
    std::string log_path = "out/nvrec-board.log";
};

int show_fresh_board(const std::string &path, const BoardOptions &options)
{
    Terminal terminal;
    if (!terminal.send_log_to(options.log_path)) return kExitOutputFailed;
    Session session;
    if (!session.start(*output_mode_named("1920x1080"), kCameras)) {
        terminal.error("the library did not start; its log says why: " + options.log_path);
        return kExitBoardFailed;
    }
    terminal.print("a freshly started board; no recorder listens at " + path);
    std::string table = board_text(board_rows());
    table.pop_back(); /* print() ends the line */
    terminal.print(table);
    session.stop();
    return kExitDone;
}

int show_board(const BoardOptions &options)
{
    const std::string path = options.socket.empty() ? default_control_path() : options.socket;
    const auto reply = ask_recorder(path, "board");
    if (!reply) return show_fresh_board(path, options);
    if (!reply->ok) {
        std::fprintf(stderr, "nvrec: %s\n", reply->text.c_str());
        return kExitBoardFailed;
    }
    std::printf("the board of the recorder that listens at %s\n%s", path.c_str(), reply->text.c_str());
    return kExitDone;
}

} // namespace

Command board_command(CLI::App &app)
{
    auto options = std::make_shared<BoardOptions>();
    CLI::App *board = app.add_subcommand("board", "Show the state of a running recorder's board");
    board->footer(
        "Without a running recorder a board is started for it. Exit status: 0 done, 2 command line,\n"
        "4 the library, the board or the recorder, 5 the log could not be written.");
    board->add_option("--control", options->socket, "Socket of the recorder")
        ->default_str(default_control_path());
    board->add_option("--log", options->log_path, "Where the library's log goes; - = standard output")
        ->capture_default_str();
    return {board, [options] { return show_board(*options); }};
}

} // namespace nvrec
