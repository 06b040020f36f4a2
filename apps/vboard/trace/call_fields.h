/*
 * call_fields.h - names for what stands in a line of a call trace. The trace writes arguments without
 * names, in the order of the declaration, and the members of records with short names of its own.
 */
#ifndef VBOARD_APP_CALL_FIELDS_H
#define VBOARD_APP_CALL_FIELDS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vboard_app
{

struct ArgumentFields {
    std::string_view name;                     // as platform/include declares it
    std::span<const std::string_view> members; // of a record, in the order of the trace; else empty
};

struct CallFields {
    std::string_view name; // MI_VDEC_StartChn, board_open, ...
    size_t count;
    ArgumentFields arguments[4]; // the first `count` of them
};

/* Every call that a trace can have, sorted by name. */
std::span<const CallFields> all_call_fields();

/* The fields of a call; null when there is no such call. */
const CallFields *find_call_fields(std::string_view call);

/*
 * What a failing result means: "VDEC: buffer full" for 0xa008000f. Empty when the result is no code of the
 * media interface.
 */
std::string result_meaning(std::string_view result);

/* The media module of a number as bindings have it: "VDEC"; empty when there is none. */
std::string_view module_name(uint64_t module);

} // namespace vboard_app

#endif
