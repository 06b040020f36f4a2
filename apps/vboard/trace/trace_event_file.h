/*
 * trace_event_file.h - a file of the trace-event format, which chrome://tracing and ui.perfetto.dev show:
 *
 *     {"displayTimeUnit": "ms", "traceEvents": [{"ph": "X", "name": ..., "ts": ..., "pid": ..., "tid": ...},
 * ...]}
 *
 * Times are microseconds. It is written as it comes, since a trace may have millions of calls; the
 * arguments of an event are handed over as JSON.
 */
#ifndef VBOARD_APP_TRACE_EVENT_FILE_H
#define VBOARD_APP_TRACE_EVENT_FILE_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace vboard_app
{

struct EventPlace {
    int process = 0, thread = 0;
};

class TraceEventFile
{
public:
    /* "-" is the standard output. @throws TraceError */
    explicit TraceEventFile(const std::string &path);
    /* A file that was not finished is removed. */
    ~TraceEventFile();
    TraceEventFile(const TraceEventFile &) = delete;
    TraceEventFile &operator=(const TraceEventFile &) = delete;

    void name_process(int process, std::string_view name, int order);
    void name_thread(EventPlace place, std::string_view name, int order);
    /* Something that lasts. @param arguments  an object, or empty */
    void slice(EventPlace place, std::string_view name, std::string_view category, int64_t from_us,
               int64_t duration_us, std::string_view arguments);
    /* Something without duration. */
    void instant(EventPlace place, std::string_view name, std::string_view category, int64_t at_us,
                 std::string_view arguments);
    /* From now on a number has this value; each name is a row of its own. */
    void counter(int process, std::string_view name, int64_t at_us, double value);

    /* Complete the file. @throws TraceError  when any of it could not be written */
    void finish();

private:
    void begin(char kind, std::string_view name, EventPlace place);
    void end();

    std::string path_;
    FILE *file_ = nullptr;
    bool removable_ = false; // neither a device nor a pipe
    std::string text_;       // of one event
    bool first_ = true;
};

/* `value` in quotes; what is no UTF-8 is replaced. */
void append_json_text(std::string &json, std::string_view value);

} // namespace vboard_app

#endif
