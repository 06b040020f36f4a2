/* board_sleep_us and board_time_us. */
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <ctime>
#include <pthread.h>
#include <sys/time.h>

#include "board_io.h"

namespace
{

using Steady = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

int64_t wall_clock_us()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return int64_t{now.tv_sec} * 1000000 + now.tv_nsec / 1000;
}

Steady::duration time_of_sleep(uint32_t sleep_us)
{
    const auto begin = Steady::now();
    board_sleep_us(sleep_us);
    return Steady::now() - begin;
}

volatile sig_atomic_t alarms;

void count_alarm(int)
{
    alarms = alarms + 1;
}

} // namespace

TEST(BoardSleep, LastsAsLongAsAskedFor)
{
    for (const uint32_t sleep_us : {100u, 1000u, 9000u, 50000u})
        EXPECT_GE(time_of_sleep(sleep_us), microseconds(sleep_us));
    EXPECT_LT(time_of_sleep(1000), milliseconds(500));
}

TEST(BoardSleep, LastsLongerThanASecondToo)
{
    const auto slept = time_of_sleep(1020000);
    EXPECT_GE(slept, milliseconds(1020));
    EXPECT_LT(slept, milliseconds(2000));
}

TEST(BoardSleep, ReturnsAtOnceFromNone)
{
    EXPECT_LT(time_of_sleep(0), milliseconds(100));
}

TEST(BoardSleep, IsNotCutShortByASignal)
{
    struct sigaction action = {};
    action.sa_handler = count_alarm; // without SA_RESTART: every alarm interrupts what waits
    ASSERT_EQ(sigaction(SIGALRM, &action, nullptr), 0);
    const itimerval every_10_ms = {{0, 10000}, {0, 10000}};
    ASSERT_EQ(setitimer(ITIMER_REAL, &every_10_ms, nullptr), 0);
    const auto slept = time_of_sleep(120000);
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    EXPECT_GE(slept, milliseconds(120));
    EXPECT_LT(slept, milliseconds(600));
    EXPECT_GE(alarms, 3);
}

TEST(BoardSleep, EndsWithACancelledThread)
{
    pthread_t sleeper;
    ASSERT_EQ(pthread_create(
                  &sleeper, nullptr,
                  [](void *) -> void * {
                      board_sleep_us(30000000);
                      return nullptr;
                  },
                  nullptr),
              0);
    const auto begin = Steady::now();
    EXPECT_EQ(pthread_cancel(sleeper), 0);
    void *result = nullptr;
    EXPECT_EQ(pthread_join(sleeper, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_LT(Steady::now() - begin, std::chrono::seconds(10));
}

TEST(BoardTime, IsTheWallClockInMicroseconds)
{
    const int64_t before = wall_clock_us();
    const int64_t told = board_time_us();
    const int64_t after = wall_clock_us();
    EXPECT_GE(told, before);
    EXPECT_LE(told, after);
}

TEST(BoardTime, GoesOnWithIt)
{
    const int64_t begin = board_time_us();
    board_sleep_us(20000);
    const int64_t passed = board_time_us() - begin;
    EXPECT_GE(passed, 20000);
    EXPECT_LT(passed, 1000000);
}

TEST(BoardTime, IsFinerThanMilliseconds)
{
    int fine = 0;
    for (int i = 0; i < 20; ++i) {
        fine += board_time_us() % 1000 != 0;
        board_sleep_us(130);
    }
    EXPECT_GT(fine, 0);
}
