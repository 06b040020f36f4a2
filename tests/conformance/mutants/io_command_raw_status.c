/* io_command_raw_status - breaks: running a command gives its exit status. */
#include "board_io.h"
#include "mutant.h"

/* What system() gives: the exit status stands in the second byte. */
int board_run_command(const char *command)
{
    const int status = PLATFORM(board_run_command)(command);
    return status > 0 ? status << 8 : status;
}
