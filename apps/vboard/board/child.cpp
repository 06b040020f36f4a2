/* child.cpp - see child.h. Between fork and exec only async-signal-safe calls: other threads run here. */
#include "board/child.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vboard_app
{
namespace
{

struct Pair {
    Descriptor here, there;
};

Pair make_pair_of(int (*make)(int fds[2]))
{
    int fds[2] = {-1, -1};
    if (make(fds) != 0) return {};
    return {Descriptor(fds[0]), Descriptor(fds[1])};
}

Pair make_pipe()
{
    return make_pair_of([](int fds[2]) { return pipe2(fds, O_CLOEXEC); });
}

Pair make_sockets()
{
    return make_pair_of([](int fds[2]) { return socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds); });
}

std::string name_of(const std::string &variable)
{
    return variable.substr(0, variable.find('='));
}

void set_variable(std::vector<std::string> *environment, const std::string &variable)
{
    const std::string name = name_of(variable);
    for (std::string &present : *environment) {
        if (name_of(present) != name) continue;
        present = variable;
        return;
    }
    environment->push_back(variable);
}

std::string value_of(const std::vector<std::string> &environment, const std::string &name)
{
    for (const std::string &variable : environment)
        if (name_of(variable) == name && variable.size() > name.size())
            return variable.substr(name.size() + 1);
    return {};
}

std::vector<std::string> environment_for(const ChildOrders &orders, int channel)
{
    std::vector<std::string> environment;
    for (char **variable = environ; *variable != nullptr; ++variable)
        environment.emplace_back(*variable);
    for (const std::string &variable : orders.environment)
        set_variable(&environment, variable);
    const std::string others = value_of(environment, "LD_PRELOAD");
    set_variable(&environment, "LD_PRELOAD=" + orders.agent + (others.empty() ? "" : ":" + others));
    set_variable(&environment, "VBOARD_REMOTE_FD=" + std::to_string(channel));
    return environment;
}

std::vector<char *> pointers_to(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/* All that the new process does before it becomes the program. Gives errno when it does not. */
int become_program(const ChildOrders &orders, pid_t parent, int channel, int output, int errors,
                   char **arguments, char **environment)
{
    // A board that is killed takes its program along, as a power cut does.
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0) return errno;
    if (getppid() != parent) _exit(1);
    if (fcntl(channel, F_SETFD, 0) != 0) return errno;
    if (output >= 0 && dup2(output, STDOUT_FILENO) < 0) return errno;
    if (errors >= 0 && dup2(errors, STDERR_FILENO) < 0) return errno;
    if (!orders.working_folder.empty() && chdir(orders.working_folder.c_str()) != 0) return errno;
    if (setrlimit(RLIMIT_NOFILE, &orders.inherited.open_files) != 0) return errno;
    struct sigaction by_default = {};
    by_default.sa_handler = orders.inherited.ignores_broken_pipes ? SIG_IGN : SIG_DFL;
    if (sigaction(SIGPIPE, &by_default, nullptr) != 0) return errno;
    if (sigprocmask(SIG_SETMASK, &orders.inherited.blocked_signals, nullptr) != 0) return errno;
    execvpe(arguments[0], arguments, environment);
    return errno;
}

} // namespace

Inherited Inherited::now()
{
    Inherited inherited = {};
    pthread_sigmask(SIG_BLOCK, nullptr, &inherited.blocked_signals);
    struct sigaction broken_pipe = {};
    sigaction(SIGPIPE, nullptr, &broken_pipe);
    inherited.ignores_broken_pipes = broken_pipe.sa_handler == SIG_IGN;
    getrlimit(RLIMIT_NOFILE, &inherited.open_files);
    return inherited;
}

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept
{
    if (this == &other) return *this;
    close();
    number_ = other.number_;
    other.number_ = -1;
    return *this;
}

void Descriptor::close()
{
    if (number_ >= 0) ::close(number_);
    number_ = -1;
}

Child start_child(const ChildOrders &orders, int *error)
{
    Pair channel = make_sockets();
    Pair failure = make_pipe(); // closed by exec; carries errno when there is none
    Pair output, errors;
    if (orders.captures_output) {
        output = make_pipe();
        errors = make_pipe();
    }
    *error = errno;
    if (!channel.here || !failure.here || (orders.captures_output && (!output.here || !errors.here)))
        return {};

    std::vector<std::string> argument_texts = orders.program;
    std::vector<std::string> variable_texts = environment_for(orders, channel.there.get());
    std::vector<char *> arguments = pointers_to(argument_texts);
    std::vector<char *> variables = pointers_to(variable_texts);
    const pid_t parent = getpid();

    Child child;
    child.pid = fork();
    if (child.pid == 0) {
        const int failed = become_program(orders, parent, channel.there.get(), output.there.get(),
                                          errors.there.get(), arguments.data(), variables.data());
        (void)!write(failure.there.get(), &failed, sizeof failed);
        _exit(127);
    }
    *error = errno;
    if (child.pid < 0) return {};

    failure.there.close();
    int failed = 0;
    ssize_t got;
    do
        got = read(failure.here.get(), &failed, sizeof failed);
    while (got < 0 && errno == EINTR);
    *error = got == sizeof failed ? failed : 0;
    child.process = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, child.pid, 0)));
    if (*error == 0 && !child.process) {
        *error = errno;
        kill(child.pid, SIGKILL);
    }
    if (*error != 0) {
        waitpid(child.pid, nullptr, 0);
        return {};
    }
    child.channel = std::move(channel.here);
    child.output = std::move(output.here);
    child.errors = std::move(errors.here);
    for (const Descriptor *mine : {&child.channel, &child.output, &child.errors})
        if (*mine) fcntl(mine->get(), F_SETFL, fcntl(mine->get(), F_GETFL) | O_NONBLOCK);
    return child;
}

} // namespace vboard_app
