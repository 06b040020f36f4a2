/*
 * call_state.h - what call.cpp and call_fault.cpp share: faults, the trace and refusals, all of it behind
 * one mutex.
 */
#ifndef VBOARD_CALL_STATE_H
#define VBOARD_CALL_STATE_H

#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "media/call.h"
#include "vboard.h"

namespace vboard
{

struct Fault {
    uint32_t nth;   // first call that fails, from 1
    uint32_t count; // how many; 0 = all that follow
    int32_t code;
    uint64_t seen = 0;  // calls since the fault was set
    uint64_t fired = 0; // of these, made to fail
};

struct CloseFile {
    void operator()(FILE *file) const { fclose(file); }
};

struct CallState {
    std::mutex mutex;
    std::map<const CallSite *, Fault> faults;
    vboard_fault_stat fault_stat = {}; // but for `waiting`, which is counted when asked for
    std::unique_ptr<FILE, CloseFile> trace;
    bool trace_is_timed = false;
    std::string last_refusal;
    uint64_t refusals = 0;
    bool loud = true;
};

CallState &call_state();

/* The call of that name, or null. */
const CallSite *find_site(const char *name);

/* A line on standard error; the caller holds the mutex and has asked whether the board is loud. */
void print_line(const std::string &line);

} // namespace vboard

#endif
