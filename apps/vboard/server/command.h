/* command.h - `vboard run`. */
#ifndef VBOARD_APP_SERVER_COMMAND_H
#define VBOARD_APP_SERVER_COMMAND_H

/* As main(); argv[0] is "run". */
int run_command(int argc, char **argv);

#endif
