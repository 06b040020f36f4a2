/* process_counts.h - what this process holds, for tests that look for leaks. */
#ifndef PROCESS_COUNTS_H
#define PROCESS_COUNTS_H

#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

#include <cstddef>
#include <fstream>

namespace process_counts
{

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kCountsBytes = false; // the address sanitizer looks for leaks at the end instead
#else
constexpr bool kCountsBytes = true;
#endif

/* Bytes that the program has allocated and not freed. A sanitizer's build has an allocator of its own. */
inline size_t allocated_bytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/* Memory of the PC under this process, shared libraries' included: decoded pictures are mapped, not
 * allocated. */
inline size_t resident_bytes()
{
    std::ifstream statm("/proc/self/statm");
    size_t pages = 0, resident_pages = 0;
    statm >> pages >> resident_pages;
    return resident_pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

inline size_t entries_of(const char *directory)
{
    size_t count = 0;
    DIR *open = opendir(directory);
    while (readdir(open) != nullptr)
        ++count;
    closedir(open);
    return count;
}

inline size_t threads()
{
    return entries_of("/proc/self/task");
}

inline size_t descriptors()
{
    return entries_of("/proc/self/fd");
}

} // namespace process_counts

#endif
