/* wakeup.cpp - see wakeup.h. */
#include "wall/wakeup.h"

#include <cerrno>
#include <csignal>
#include <initializer_list>
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

sigset_t set_of(std::initializer_list<int> numbers)
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : numbers)
        sigaddset(&set, number);
    return set;
}

/* nohup(1) and the like: it is meant to outlive its terminal. */
bool is_ignored(int number)
{
    struct sigaction action = {};
    return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

Wakeup::Wakeup(Hangup hangup) : hangup_(hangup)
{
    sigset_t set = set_of({SIGINT, SIGTERM});
    if (hangup == Hangup::kReloads || !is_ignored(SIGHUP)) sigaddset(&set, SIGHUP);
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

/*
 * A second SIGINT or SIGTERM ends the process as usual: this thread takes it then. A second SIGHUP does
 * not, since a terminal that goes away may send several.
 */
void Wakeup::take_signals()
{
    pollfd sources[] = {{closing_, POLLIN, 0}, {signals_, POLLIN, 0}};
    while (!end_wanted_) {
        while (poll(sources, 2, -1) < 0 && errno == EINTR) {
        }
        if (sources[0].revents != 0) return;
        read_signals();
        wake();
    }
    const sigset_t set = set_of({SIGINT, SIGTERM});
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    while (poll(sources, 1, -1) < 0 && errno == EINTR) {
    }
}

void Wakeup::read_signals()
{
    signalfd_siginfo received;
    while (read(signals_, &received, sizeof received) == sizeof received) {
        if (received.ssi_signo == SIGHUP && hangup_ == Hangup::kReloads) {
            reload_wanted_ = true;
        } else {
            end_wanted_ = true;
        }
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
