/*
 * call_line.h - one line of a call trace, taken apart:
 *
 *     812391 MI_SYS_UnBindChnPort {module=8 device=0 channel=0 port=0} {...} = 0xa0010005 (absent)
 *     812410 MI_VDEC_SendStream 0 {length=9 pts=0 ...} 20 = 0 ; thread 3, 41 us
 *     812500 event plug {plugged=0}
 *
 * The time is the board's clock when the call ended, microseconds. Thread and duration stand there when
 * the trace was started with them. A text argument is in quotes and not escaped; it ends at the last quote
 * of the arguments, since no call has two.
 */
#ifndef VBOARD_APP_CALL_LINE_H
#define VBOARD_APP_CALL_LINE_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vboard_app
{

/* A name and its value as the trace has it: "1920", "-", "null", "data", "cbf43926", "{x=0 y=0}". */
struct CallField {
    std::string_view name; // "argument5" where the call is not known or has fewer
    std::string_view text; // without the quotes of a text
    bool quoted = false;
    uint32_t first_member = 0, member_count = 0; // of a record; see CallLine::members
};

/* All texts lie in the line that was parsed, or are constant. */
struct CallLine {
    int64_t time_us = 0;
    bool event = false;               // something came up from a device: no call, no result
    std::string_view name;            // of the call, or of the event: plug, remote, panel, mouse
    std::vector<CallField> arguments; // those of an event: the members of its record
    std::vector<CallField> record_members;
    std::string_view result; // "0", "-1", "0xa0080005", "address", "null"
    std::string_view reason; // behind a result that the board does not count as a refusal: "absent"
    bool failed = false;
    std::optional<uint32_t> thread;
    std::optional<int64_t> duration_us;
    std::optional<uint32_t> channel; // decoder, scaler, encoder or sound channel; of a binding: its source's

    std::span<const CallField> members(const CallField &argument) const
    {
        return {record_members.data() + argument.first_member, argument.member_count};
    }
    /* An argument, or with "stream.length" the member of one; null when the line has none of that name. */
    const CallField *find(std::string_view path) const;
    /* Its value as a number; nothing when it is no number. */
    std::optional<int64_t> number(std::string_view path) const;
};

/*
 * Take a line without its end apart. Any text is accepted as input.
 * @param call  filled; its vectors are used again
 * @return empty, or what is wrong with the line; `call` is of no use then
 */
std::string_view parse_call(std::string_view line, CallLine &call);

/* A decimal number, or one with "0x"; nothing when the text is something else or beyond 64 bits. */
std::optional<int64_t> field_number(std::string_view text);

} // namespace vboard_app

#endif
