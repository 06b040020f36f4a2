/*
 * counters.h - numbers that move while a recorder runs, as far as its calls tell them:
 *
 *     VDEC n backlog, bytes and frames   from every MI_VDEC_GetChnStat; 0 when the channel is stopped
 *     VDEC n pictures waiting            likewise
 *     VDEC n sent, kbit/s; VDEC n sends/s   of MI_VDEC_SendStream, over the last second
 *     AO n sent, kbit/s                  of MI_AO_SendFrame, over the last second
 *     VENC n pictures                    that MI_VENC_GetStream gave, so far
 *     DISP n ports shown                 enabled and not hidden
 *
 * Rates move in steps of a tenth of a second of the board's clock.
 */
#ifndef VBOARD_APP_COUNTERS_H
#define VBOARD_APP_COUNTERS_H

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "trace/call_line.h"

namespace vboard_app
{

class Counters
{
public:
    /* Called with a counter's name, the time and its new value; values that stay are not told again. */
    using Tell = std::function<void(const std::string &name, int64_t at_us, double value)>;
    explicit Counters(Tell tell) : tell_(std::move(tell)) {}

    /* The next call of the trace. */
    void count(const CallLine &call);
    /* The trace is at its end: rates go down to what the last second had. */
    void finish();

private:
    static constexpr int64_t kStep_us = 100000;
    static constexpr size_t kSteps = 10; // a second

    struct Rate {
        std::array<double, kSteps> amounts = {}; // of the last steps, the newest at `at`
        size_t at = 0;
        double sum = 0;
    };

    void set(const std::string &name, int64_t at_us, double value);
    void add(const std::string &name, double amount);
    void advance(int64_t to_us);
    void count_decoder(const CallLine &call);
    void count_display(const CallLine &call);

    Tell tell_;
    std::map<std::string, double> values_;
    std::map<std::string, Rate> rates_;
    std::map<int64_t, std::map<int64_t, std::pair<bool, bool>>> ports_; // device, port: enabled, hidden
    int64_t step_ = 0; // number of the step that rates are in
    bool begun_ = false;
};

} // namespace vboard_app

#endif
