/*
 * call_ring.h - the newest platform calls, for the request "calls" and the events of that name. They are
 * collected only while somebody asks: the program sends none otherwise.
 *
 * Any thread; calls arrive on the board's thread, which only puts them down here. They are taken apart
 * when they are asked for.
 */
#ifndef VBOARD_APP_SERVER_CALL_RING_H
#define VBOARD_APP_SERVER_CALL_RING_H

#include <chrono>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "board/board.h"

namespace vboard_app
{

class CallRing
{
public:
    explicit CallRing(Board &board) : board_(board) {}

    /* The result of the request "calls"; from now on they are collected. @throws RequestError */
    nlohmann::json asked(const nlohmann::json &parameters);

    /* Somebody is interested: from now on they are collected. @throws RequestError */
    void keep_collecting();

    /* As asked(), of at most 200 calls that came after number `after`; empty: there are none. */
    nlohmann::json newer(uint64_t after);

    /* Data of the agent's event "calls". */
    void add(const nlohmann::json &data);

    /* The program was started again: it does not know that it is followed. */
    void started_again();

    /* Now and then: collecting ends when nobody has asked for long. */
    void look_at_time();

    uint64_t newest() const;

private:
    struct Entry {
        uint64_t number = 0;
        nlohmann::json told;                // by the agent
        std::optional<nlohmann::json> call; // as requests give it, once it was asked for
    };

    void follow(bool on);
    static const nlohmann::json &taken_apart(Entry &entry);
    nlohmann::json result(uint64_t after, size_t limit, const nlohmann::json &wanted);

    Board &board_;
    std::mutex follow_mutex_;  // held while the program is told
    mutable std::mutex mutex_; // guards what follows; never held during a request
    std::deque<Entry> calls_;
    uint64_t last_number_ = 0, lost_ = 0;
    bool following_ = false;
    std::chrono::steady_clock::time_point asked_at_ = {};
};

} // namespace vboard_app

#endif
