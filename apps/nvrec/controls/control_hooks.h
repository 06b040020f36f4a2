/*
 * control_hooks.h - functions of other rooms that requests on the control socket call. If one is empty, the
 * request is answered with an error.
 *
 * Threads: all are called on the main thread.
 */
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "controls/status.h"

namespace nvrec
{

struct ControlHooks {
    /** Something happened at a camera, of a kind that names its source: "outside", "alarm", "motion". */
    std::function<void(int channel, const std::string &kind, const std::string &text)> event;

    /** Take up a changed configuration. @return lines that say what was done; ok = nothing is left undone */
    std::function<std::string(bool *ok)> reload;

    /** The limits of what is kept of the recordings; the recorder adds the rest. */
    std::function<std::optional<ArchiveStatus>()> archive;
};

} // namespace nvrec
