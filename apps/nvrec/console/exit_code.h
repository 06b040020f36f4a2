/* exit_code.h - how nvrec ends. */
#pragma once

namespace nvrec
{

enum ExitCode {
    kExitDone = 0,
    kExitUsage = 2,       /* a command line that makes no sense                        */
    kExitInputFailed = 3, /* an input could not be opened or broke; the others ran      */
    kExitBoardFailed = 4, /* the library or the board refused                           */
    kExitOutputFailed = 5 /* a picture, log or report could not be written              */
};

} // namespace nvrec
