/*
 * The main operations that plain C programs run as well (tests/musl), on this recording platform: what both
 * find in the golden files is written here.
 */
#include "operations.h"

#include <cstring>

#include "fresh_process.h"
#include "nvrhal.h"
#include "recording_expect.h"

using recording::platform;

namespace
{

std::string log_text;

const recording_below kBelow = {
    [] {
        platform.forget();
        log_text.clear();
    },
    [](const char *path) { platform.node(path).fails_to_open(); },
    [](const char *name, unsigned n, int32_t code) { platform.script(name).nth(n).returns(code); },
    [](const char *what, const char *value) { platform.record(what, value); },
};

class Operations : public testing::TestWithParam<size_t>
{
};

TEST_P(Operations, AreAsTheGoldenFilesSay)
{
    const operation &operation = operations[GetParam()];
    nvrhal_set_log([](const char *text, size_t length, void *) { log_text.append(text, length); }, nullptr);
    operation.run(&kBelow);
    nvrhal_set_log(nullptr, nullptr);

    std::vector<std::string> prefixes;
    for (const char *const *prefix = operation.prefixes; prefix && *prefix; ++prefix)
        prefixes.emplace_back(*prefix);
    EXPECT_GOLDEN(operation.name, platform.calls(prefixes));
    if (operation.has_log == 0) return;
    hide_numbers(log_text.data());
    log_text.resize(std::strlen(log_text.c_str()));
    if (!log_text.empty() && log_text.back() == '\n') log_text.pop_back(); // the golden file ends in one
    EXPECT_GOLDEN(std::string(operation.name) + "_log", log_text);
}

INSTANTIATE_TEST_SUITE_P(Main, Operations, testing::Range(size_t{0}, operation_count),
                         [](const auto &which) { return std::string(operations[which.param].name); });

} // namespace
