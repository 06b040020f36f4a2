/* embedded.h - files of the sources that the program carries in itself: made by embed.cmake. */
#ifndef VBOARD_APP_EMBEDDED_H
#define VBOARD_APP_EMBEDDED_H

#include <cstddef>

namespace vboard_app
{

struct EmbeddedFile {
    const char *name;           // below its folder
    const unsigned char *bytes; // a zero byte follows the last one
    size_t size;
};

/* Tables that end with a null name. */
const EmbeddedFile *description_files(); // api/v1.json
const EmbeddedFile *page_files();        // the files of page/

} // namespace vboard_app

#endif
