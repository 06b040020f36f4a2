/* wakeup.cpp - see wakeup.h. */
#include "wall/wakeup.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace nvrec
{
namespace
{

sigset_t end_signals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

} // namespace

Wakeup::Wakeup()
{
    const sigset_t set = end_signals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    signals_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    bell_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (signals_ < 0 || bell_ < 0)
        throw std::system_error(errno, std::generic_category(), "signalfd or eventfd");
}

Wakeup::~Wakeup()
{
    close(signals_);
    close(bell_);
}

void Wakeup::wait_until(std::chrono::steady_clock::time_point when)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(when - std::chrono::steady_clock::now());
    const auto timeout = std::clamp<int64_t>(left.count(), 0, 60'000);
    pollfd sources[] = {{signals_, POLLIN, 0}, {bell_, POLLIN, 0}};
    if (poll(sources, 2, static_cast<int>(timeout)) <= 0) return;

    if (sources[0].revents & POLLIN) {
        signalfd_siginfo received;
        while (read(signals_, &received, sizeof received) == sizeof received)
            end_wanted_ = true;
        const sigset_t set = end_signals();
        pthread_sigmask(SIG_UNBLOCK, &set, nullptr); /* of this thread: it takes the second one */
    }
    eventfd_t rings;
    if (sources[1].revents & POLLIN) eventfd_read(bell_, &rings);
}

void Wakeup::ring()
{
    eventfd_write(bell_, 1);
}

} // namespace nvrec
