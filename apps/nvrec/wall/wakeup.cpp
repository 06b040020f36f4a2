/* wakeup.cpp - see wakeup.h. */
#include "wall/wakeup.h"

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

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
    closing_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (signals_ < 0 || closing_ < 0)
        throw std::system_error(errno, std::generic_category(), "signalfd or eventfd");
    signal_thread_ = std::thread([this] { take_signals(); });
}

Wakeup::~Wakeup()
{
    eventfd_write(closing_, 1);
    signal_thread_.join();
    close(signals_);
    close(closing_);
}

void Wakeup::take_signals()
{
    pollfd sources[] = {{closing_, POLLIN, 0}, {signals_, POLLIN, 0}};
    while (poll(sources, 2, -1) < 0 && errno == EINTR) {
    }
    if (sources[0].revents != 0) return;

    signalfd_siginfo received;
    while (read(signals_, &received, sizeof received) == sizeof received) {
    }
    end_wanted_ = true;
    wake();
    const sigset_t set = end_signals();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr); /* of this thread: it takes the second one */
    while (poll(sources, 1, -1) < 0 && errno == EINTR) {
    }
}

void Wakeup::wait_until(Clock::time_point when)
{
    std::unique_lock guard(lock_);
    woken_.wait_until(guard, when, [this] { return wake_asked_; });
    wake_asked_ = false;
}

void Wakeup::wake()
{
    const std::scoped_lock guard(lock_);
    wake_asked_ = true;
    woken_.notify();
}

} // namespace nvrec
