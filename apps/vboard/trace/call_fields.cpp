/* call_fields.cpp - names for what stands in a line of a call trace. */
#include "trace/call_fields.h"

#include <algorithm>
#include <charconv>

#include "mi_common.h"

namespace vboard_app
{
namespace
{

#include "trace/call_table.inc"

struct NamedNumber {
    uint32_t number;
    std::string_view name;
};

constexpr NamedNumber kModules[] = {
    {MI_MODULE_SYS, "SYS"},   {MI_MODULE_VENC, "VENC"}, {MI_MODULE_AO, "AO"},     {MI_MODULE_VDEC, "VDEC"},
    {MI_MODULE_HDMI, "HDMI"}, {MI_MODULE_DIVP, "DIVP"}, {MI_MODULE_DISP, "DISP"},
};

// The words are those that the board's own lines have.
constexpr NamedNumber kReasons[] = {
    {MI_REASON_BAD_DEVICE, "no such device"},
    {MI_REASON_BAD_CHANNEL, "no such channel"},
    {MI_REASON_BAD_VALUE, "bad value"},
    {MI_REASON_EXISTS, "exists already"},
    {MI_REASON_ABSENT, "absent"},
    {MI_REASON_NULL_POINTER, "null pointer"},
    {MI_REASON_NOT_READY, "not ready"},
    {MI_REASON_UNSUPPORTED, "unsupported"},
    {MI_REASON_NOT_PERMITTED, "not permitted"},
    {MI_REASON_NO_MEMORY, "no memory"},
    {MI_REASON_NO_BUFFER, "no buffer"},
    {MI_REASON_BUFFER_FULL, "buffer full"},
    {MI_REASON_TIMEOUT, "timed out"},
    {MI_REASON_FAULT, "device fault"},
};

template <size_t N> std::string_view name_of(const NamedNumber (&table)[N], uint64_t number)
{
    const auto *found = std::find_if(std::begin(table), std::end(table),
                                     [&](const NamedNumber &row) { return row.number == number; });
    return found != std::end(table) ? found->name : std::string_view{};
}

} // namespace

std::span<const CallFields> all_call_fields()
{
    return kCalls;
}

const CallFields *find_call_fields(std::string_view call)
{
    const auto *found =
        std::lower_bound(std::begin(kCalls), std::end(kCalls), call,
                         [](const CallFields &row, std::string_view name) { return row.name < name; });
    return found != std::end(kCalls) && found->name == call ? found : nullptr;
}

std::string result_meaning(std::string_view result)
{
    uint32_t code = 0;
    if (!result.starts_with("0x")) return {};
    const auto [end, error] = std::from_chars(result.data() + 2, result.data() + result.size(), code, 16);
    if (error != std::errc() || end != result.data() + result.size()) return {};
    if (code != static_cast<uint32_t>(MI_ERROR(code >> 16 & 0xFF, code & 0xFF))) return {};
    const std::string_view module = name_of(kModules, code >> 16 & 0xFF);
    const std::string_view reason = name_of(kReasons, code & 0xFF);
    if (module.empty() || reason.empty()) return {};
    return std::string(module) + ": " + std::string(reason);
}

std::string_view module_name(uint64_t module)
{
    return name_of(kModules, module);
}

} // namespace vboard_app
