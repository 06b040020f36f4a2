/*
 * openings.h - the program's own descriptors that are led to the board.
 *
 * The program has a real descriptor for each, an eventfd, so that poll(), select() and epoll work by
 * themselves: it is readable while the board's opening has a record. Descriptors made by dup() share the
 * opening. A process that is no longer the one that began with the agent (after fork or vfork) has the
 * descriptors, and no board behind them.
 *
 * Lock order: the table, then an opening's own. Neither is held while the board is called to read, to
 * carry out a request or to close.
 */
#ifndef VBOARD_REMOTE_OPENINGS_H
#define VBOARD_REMOTE_OPENINGS_H

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vboard_remote
{

constexpr int kMostDescriptors = 4096; // beyond them a node cannot be opened

/* Those of them that are the board's, for a look that costs next to nothing. */
extern std::array<std::atomic<bool>, kMostDescriptors> board_descriptors;

inline bool is_board_descriptor(int descriptor)
{
    return static_cast<unsigned>(descriptor) < static_cast<unsigned>(kMostDescriptors) &&
           board_descriptors[static_cast<size_t>(descriptor)].load(std::memory_order_relaxed);
}

/* One board_open. */
class Opening
{
public:
    Opening(std::string node_path, int board_descriptor);
    ~Opening(); // closes it, in the process that opened it
    Opening(const Opening &) = delete;
    Opening &operator=(const Opening &) = delete;

    /* Let the eventfd tell what the board has. Any thread. */
    void update();

    void add(int descriptor);
    void remove(int descriptor);

    const std::string path;
    const int board;        // descriptor of board_open
    const bool has_records; // a node that is read
    std::mutex reading;     // held from the look to the read where a read must not wait

private:
    std::mutex mutex_;
    std::set<int> descriptors_; // of the program, all of one eventfd
    bool is_raised_ = false;    // the eventfd is readable
};

using OpeningPtr = std::shared_ptr<Opening>;

/* Whether a path is to be led to the board. Null is none. */
bool is_board_path(const char *path);

/* Whether this process is another one than the board's: made by fork or vfork. */
bool is_other_process();

/* As open(), for such a path. */
int open_board_node(const char *path, int flags);

/*
 * The opening behind a descriptor for which is_board_descriptor holds. Null: it is none after all, since
 * it was closed behind the back of this library; the C library is to be called.
 */
OpeningPtr find_opening(int descriptor);

/* Before a descriptor is closed; and all from one to another. */
void forget_descriptor(int descriptor);
void forget_descriptors(unsigned first, unsigned last);

/* A descriptor was made that is the same opening as another one, or none of the board's. */
void note_duplicate(int descriptor, int duplicate);

/* Before a fork, and after it: no thread is inside of the table meanwhile, and the child's is its own. */
void lock_openings();
void unlock_openings();
void unlock_openings_of_child();

struct ProgramNode {
    std::string path;
    int descriptor; // the program's
};

/* Those that are open now, by descriptor. */
std::vector<ProgramNode> program_nodes();

} // namespace vboard_remote

#endif
