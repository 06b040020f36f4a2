/* command.h - `vboard ctl`. */
#ifndef VBOARD_APP_CTL_COMMAND_H
#define VBOARD_APP_CTL_COMMAND_H

/* As main(); argv[0] is "ctl". 0; 1 the request was refused; 2 it was not understood. */
int ctl_command(int argc, char **argv);

#endif
