/* calls_from_c.h - what calls_from_c.c did, seen from C++. */
#ifndef CALLS_FROM_C_H
#define CALLS_FROM_C_H

#ifdef __cplusplus
extern "C" {
#endif

/* The sum of the results; each of two operations was called twice. */
int results_of_calls_from_c(void);

#ifdef __cplusplus
}
#endif

#endif
