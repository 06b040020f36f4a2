/* versions.cpp - see versions.h. */
#include "controls/versions.h"

#include <filesystem>
#include <system_error>

#include <dlfcn.h>

#include "nvrhal.h"

namespace nvrec
{

std::string nvrec_version()
{
    return NVREC_VERSION;
}

/* The library has no call that tells its version, but its file's name does: libnvrhal.so.1.0. */
std::string library_version()
{
    Dl_info found = {};
    if (dladdr(reinterpret_cast<const void *>(&ext_device_init), &found) == 0 || !found.dli_fname)
        return "unknown";
    std::error_code failed;
    const std::string name = std::filesystem::canonical(found.dli_fname, failed).filename().string();
    const size_t so = name.find(".so.");
    return failed || so == std::string::npos ? "unknown" : name.substr(so + 4);
}

} // namespace nvrec
