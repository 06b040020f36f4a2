/*
 * each_case_alone.cpp - a main function that runs every test case in a process of its own.
 *
 * The library has no reset hook, so each case needs fresh library state. The process forks once a
 * case, before anything of the library has run; that saves starting the program again. It ends at
 * the first case that does not pass and prints its name.
 *
 * CASE_SECONDS in the environment: how long a case may take, on the clock; half of it of processor
 * time. Exit status: 0 = all passed, 1 = a case failed, 3 = a case took too long.
 */
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr rlim_t kMemory_bytes = rlim_t{4} << 30;

std::vector<std::string> all_cases()
{
    std::vector<std::string> cases;
    const testing::UnitTest &all = *testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite &suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const std::string name = suite.GetTestInfo(j)->name();
            if (std::string(suite.name()).find("DISABLED_") != 0 && name.find("DISABLED_") != 0)
                cases.push_back(std::string(suite.name()) + "." + name);
        }
    }
    return cases;
}

void limit(__rlimit_resource_t resource, rlim_t most)
{
    const rlimit both = {most, most};
    setrlimit(resource, &both);
}

[[noreturn]] void run_case(const std::string &name, unsigned seconds)
{
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_AS, kMemory_bytes);
    limit(RLIMIT_CPU, seconds / 2 + 1);
    alarm(seconds);
    testing::GTEST_FLAG(filter) = name;
    _exit(RUN_ALL_TESTS() == 0 ? 0 : 1);
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const char *limit_s = std::getenv("CASE_SECONDS");
    const unsigned seconds = limit_s ? static_cast<unsigned>(std::atoi(limit_s)) : 30;
    for (const std::string &name : all_cases()) {
        const pid_t child = fork();
        if (child == 0) run_case(name, seconds);
        int status = 0;
        if (child < 0 || waitpid(child, &status, 0) != child) return 2;
        if (WIFEXITED(status) && WEXITSTATUS(status) == 0) continue;
        const bool too_long =
            WIFSIGNALED(status) && (WTERMSIG(status) == SIGALRM || WTERMSIG(status) == SIGXCPU);
        std::printf("%s\n", name.c_str());
        return too_long ? 3 : 1;
    }
    return 0;
}
