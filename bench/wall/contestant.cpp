/* Processes and their figures, through wait4. */
#include "contestant.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace wallbench
{

namespace
{

double seconds(const timeval &time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

[[noreturn]] void become(const std::vector<std::string> &command)
{
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, 0);
    dup2(nowhere, 1);
    dup2(nowhere, 2);
    std::vector<char *> arguments;
    for (const std::string &word : command)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

double median_of(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

Figures run_command(const std::vector<std::string> &command)
{
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) become(command);
    Figures figures;
    if (child < 0) return figures;
    int status = 0;
    rusage usage = {};
    if (wait4(child, &status, 0, &usage) != child) return figures;
    figures.wall_s = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    figures.cpu_s = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    figures.peak_mib = static_cast<double>(usage.ru_maxrss) / 1024;
    figures.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return figures;
}

Figures median(std::vector<Figures> runs)
{
    Figures result;
    result.ok = !runs.empty();
    std::vector<double> wall, cpu, peak;
    for (const Figures &run : runs) {
        result.ok = result.ok && run.ok;
        wall.push_back(run.wall_s);
        cpu.push_back(run.cpu_s);
        peak.push_back(run.peak_mib);
    }
    if (!result.ok) return result;
    result.wall_s = median_of(wall);
    result.cpu_s = median_of(cpu);
    result.peak_mib = median_of(peak);
    return result;
}

} // namespace wallbench
