/* trace_event_file.cpp - a file of the trace-event format. */
#include "trace/trace_event_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>

#include "trace/trace_reader.h"

namespace vboard_app
{
namespace
{

constexpr size_t kBuffer_bytes = 1024 * 1024;

bool is_plain(char c)
{
    return c >= ' ' && c <= '~' && c != '"' && c != '\\';
}

} // namespace

void append_json_text(std::string &json, std::string_view value)
{
    if (std::all_of(value.begin(), value.end(), is_plain)) {
        json += '"';
        json += value;
        json += '"';
        return;
    }
    json += nlohmann::json(std::string(value)).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
}

TraceEventFile::TraceEventFile(const std::string &path) : path_(path == "-" ? "standard output" : path)
{
    file_ = path == "-" ? fdopen(dup(STDOUT_FILENO), "wb") : fopen(path.c_str(), "wb");
    if (file_ == nullptr) throw TraceError(path_ + ": " + strerror(errno));
    struct stat status;
    removable_ = path != "-" && fstat(fileno(file_), &status) == 0 && S_ISREG(status.st_mode);
    setvbuf(file_, nullptr, _IOFBF, kBuffer_bytes);
    fputs("{\"displayTimeUnit\":\"ms\",\"traceEvents\":[\n", file_);
}

TraceEventFile::~TraceEventFile()
{
    if (file_ == nullptr) return;
    fclose(file_);
    if (removable_) unlink(path_.c_str());
}

void TraceEventFile::begin(char kind, std::string_view name, EventPlace place)
{
    text_ = first_ ? "" : ",\n";
    first_ = false;
    text_ += "{\"ph\":\"";
    text_ += kind;
    text_ += "\",\"name\":";
    append_json_text(text_, name);
    text_ += ",\"pid\":" + std::to_string(place.process) + ",\"tid\":" + std::to_string(place.thread);
}

void TraceEventFile::end()
{
    text_ += '}';
    fwrite(text_.data(), 1, text_.size(), file_);
}

void TraceEventFile::name_process(int process, std::string_view name, int order)
{
    begin('M', "process_name", {process, 0});
    text_ += ",\"args\":{\"name\":";
    append_json_text(text_, name);
    text_ += '}';
    end();
    begin('M', "process_sort_index", {process, 0});
    text_ += ",\"args\":{\"sort_index\":" + std::to_string(order) + "}";
    end();
}

void TraceEventFile::name_thread(EventPlace place, std::string_view name, int order)
{
    begin('M', "thread_name", place);
    text_ += ",\"args\":{\"name\":";
    append_json_text(text_, name);
    text_ += '}';
    end();
    begin('M', "thread_sort_index", place);
    text_ += ",\"args\":{\"sort_index\":" + std::to_string(order) + "}";
    end();
}

void TraceEventFile::slice(EventPlace place, std::string_view name, std::string_view category,
                           int64_t from_us, int64_t duration_us, std::string_view arguments)
{
    begin('X', name, place);
    text_ += ",\"cat\":";
    append_json_text(text_, category);
    text_ += ",\"ts\":" + std::to_string(from_us) + ",\"dur\":" + std::to_string(duration_us);
    if (!arguments.empty()) text_.append(",\"args\":").append(arguments);
    end();
}

void TraceEventFile::instant(EventPlace place, std::string_view name, std::string_view category,
                             int64_t at_us, std::string_view arguments)
{
    begin('i', name, place);
    text_ += ",\"cat\":";
    append_json_text(text_, category);
    text_ += ",\"ts\":" + std::to_string(at_us) + ",\"s\":\"t\"";
    if (!arguments.empty()) text_.append(",\"args\":").append(arguments);
    end();
}

void TraceEventFile::counter(int process, std::string_view name, int64_t at_us, double value)
{
    begin('C', name, {process, 0});
    text_ +=
        ",\"ts\":" + std::to_string(at_us) + ",\"args\":{\"value\":" + nlohmann::json(value).dump() + "}";
    end();
}

void TraceEventFile::finish()
{
    fputs("\n]}\n", file_);
    const bool written = ferror(file_) == 0 && fflush(file_) == 0;
    const int error = errno;
    if (!written) throw TraceError(path_ + ": " + strerror(error)); // the destructor removes it
    FILE *file = file_;
    file_ = nullptr;
    if (fclose(file) != 0) throw TraceError(path_ + ": " + strerror(errno));
}

} // namespace vboard_app
