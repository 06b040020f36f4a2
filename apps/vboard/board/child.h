/*
 * child.h - starting the program: with the agent preloaded and its end of the channel, as it would have
 * been started without, in everything else.
 */
#ifndef VBOARD_APP_CHILD_H
#define VBOARD_APP_CHILD_H

#include <csignal>
#include <optional>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/types.h>

namespace vboard_app
{

/* What a program inherits of this process; taken before anything of it is changed here. */
struct Inherited {
    sigset_t blocked_signals;
    bool ignores_broken_pipes;
    rlimit open_files;

    static Inherited now();
};

/* An open descriptor with an owner. */
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor &&other) noexcept : number_(other.number_) { other.number_ = -1; }
    Descriptor &operator=(Descriptor &&other) noexcept;
    int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }
    void close();

private:
    int number_ = -1;
};

struct ChildOrders {
    std::vector<std::string> program;     // with arguments; searched for as a shell does
    std::vector<std::string> environment; // NAME=value, in the place of this process's of that name
    std::string working_folder;           // empty: this process's
    std::string agent;                    // library that is preloaded
    bool captures_output = false;         // standard output and error come by pipes
    Inherited inherited;
};

struct Child {
    pid_t pid = -1;
    Descriptor process;        // readable when it has ended
    Descriptor channel;        // this end of it
    Descriptor output, errors; // when captured
};

/*
 * Start it. It is killed when the calling thread ends.
 * @param error  receives errno of what failed, execvp among them; 0 when it runs
 */
Child start_child(const ChildOrders &orders, int *error);

} // namespace vboard_app

#endif
