/*
 * abi.h - assertions on the layout of records that cross the library's edge.
 *
 * ABI_SIZE and ABI_AT hold everywhere: for records without pointers. ABI32_SIZE and ABI32_AT are
 * for records with pointers, whose stated layout is that of the 32-bit target.
 */
#pragma once

#include <cstddef>

#define ABI_SIZE(type, bytes) static_assert(sizeof(type) == (bytes), #type " must be " #bytes " bytes")
#define ABI_AT(type, field, offset)                                                                          \
    static_assert(offsetof(type, field) == (offset), #type "." #field " must stand at " #offset)
#define ABI32_SIZE(type, bytes)                                                                              \
    static_assert(sizeof(void *) != 4 || sizeof(type) == (bytes), #type " must be " #bytes " bytes")
#define ABI32_AT(type, field, offset)                                                                        \
    static_assert(sizeof(void *) != 4 || offsetof(type, field) == (offset),                                  \
                  #type "." #field " must stand at " #offset)
