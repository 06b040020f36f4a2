/* sys_version_unterminated - breaks: the version text ends with a NUL within its 128 bytes. */
#include "mi_sys.h"
#include "mutant.h"

#include <string.h>

/* A text that fills its field to the last byte. */
int32_t MI_SYS_GetVersion(MI_SYS_Version *version)
{
    const int32_t result = PLATFORM(MI_SYS_GetVersion)(version);
    if (result != MI_SUCCESS) return result;
    const size_t length = strlen(version->text);
    memset(version->text + length, '.', sizeof version->text - length);
    return result;
}
