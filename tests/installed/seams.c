/* seams.c - a porter's file: a piece of the media interface, for which the headers of the seams suffice. */
#include <board_io.h>
#include <mi_sys.h>

#ifdef NVRHAL_API
#error "the seams are declared without the application's header"
#endif

int32_t MI_SYS_Init(void)
{
    return 0;
}
