/*
 * board_file.h - files that requests name: within the board's folder, never outside of it, neither by ".."
 * nor by a link.
 */
#ifndef VBOARD_APP_BOARD_FILE_H
#define VBOARD_APP_BOARD_FILE_H

#include <string>

namespace vboard_app
{

/*
 * The whole path of a file in a folder. The file may be missing, its own folder must be there.
 * @throws RequestError  forbidden: it lies outside; bad_parameter (`parameter`): it cannot be a file
 */
std::string file_within(const std::string &folder, const std::string &name, const std::string &parameter);

} // namespace vboard_app

#endif
