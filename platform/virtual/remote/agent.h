/* agent.h - whether this program is led from another process. */
#ifndef VBOARD_REMOTE_AGENT_H
#define VBOARD_REMOTE_AGENT_H

namespace vboard_remote
{

/* Constant from the constructors on. */
bool has_agent();

} // namespace vboard_remote

#endif
