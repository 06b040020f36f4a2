/* agent_path.h - where the library is that the program is started with. */
#ifndef VBOARD_APP_AGENT_PATH_H
#define VBOARD_APP_AGENT_PATH_H

#include <string>

namespace vboard_app
{

/*
 * libvboard-remote.so beside this program's build, or installed with it: ../lib of the program's folder, and
 * the folder that was chosen for libraries. Empty: it is in none of them.
 */
std::string agent_path();

} // namespace vboard_app

#endif
