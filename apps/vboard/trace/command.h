/* command.h - vboard trace: a call trace counted, compared, drawn on a time line. */
#ifndef VBOARD_APP_TRACE_COMMAND_H
#define VBOARD_APP_TRACE_COMMAND_H

/* argv[0] is "trace". @return exit status: 0; of diff 1 when the traces differ; 2 when something is wrong */
int trace_command(int argc, char **argv);

#endif
