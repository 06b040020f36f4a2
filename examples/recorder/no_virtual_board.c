/* no_virtual_board.c - virtual_board.h on a board, where hands and eyes are real. */
#include "virtual_board.h"

bool virtual_board_order(const char *text)
{
    (void)text;
    return false;
}

bool virtual_board_turn(void)
{
    return true;
}
