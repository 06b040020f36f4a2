/* agent.h - whether this program is led from another process. */
#ifndef VBOARD_REMOTE_AGENT_H
#define VBOARD_REMOTE_AGENT_H

#include <sys/types.h>

namespace vboard_remote
{

/* Constant from the constructors on. */
bool has_agent();

/* The process that began with the agent; 0 without one. */
pid_t agent_process();

} // namespace vboard_remote

#endif
