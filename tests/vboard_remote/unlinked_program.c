/* unlinked_program.c - a program without the board. */
#include <stdio.h>

int main(void)
{
    printf("ready\n");
    return 3;
}
