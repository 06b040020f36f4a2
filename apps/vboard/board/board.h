/*
 * board.h - a board whose program is running: what the web page, the command line and the scenarios have
 * in common. Requests and events are those of api/v1.json.
 */
#ifndef VBOARD_APP_BOARD_H
#define VBOARD_APP_BOARD_H

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace vboard_app
{

/* A request was not carried out. `code` is one of the errors of api/v1.json. */
class RequestError : public std::runtime_error
{
public:
    RequestError(std::string error_code, const std::string &message, std::string which = {})
        : std::runtime_error(message), code(std::move(error_code)), parameter(std::move(which))
    {
    }

    const std::string code;
    const std::string parameter; // the one that is wrong; empty: none in particular
};

/* A picture as the board composed it: I420, limited range, planes without padding. */
struct Picture {
    uint32_t width = 0, height = 0; // pixels; both even
    bool blank = false;             // the monitor sees no signal
    std::vector<uint8_t> bytes;     // Y, U, V: width * height * 3 / 2
};

class Board
{
public:
    virtual ~Board() = default;

    /*
     * Carry out a request. Any thread; several at a time.
     * @param name        as in api/v1.json
     * @param parameters  an object, checked against the description here
     * @return the result, an object
     * @throws RequestError
     */
    virtual nlohmann::json request(const std::string &name, const nlohmann::json &parameters) = 0;

    /* What a display device shows, or (without one) the monitor. Any thread. @throws RequestError */
    virtual Picture picture(const int *device = nullptr, bool settled = false) = 0;

    /*
     * Be told of events, on a thread of the board that must not be held up. One listener; an empty one
     * ends it, and returns when no call is running any more.
     */
    using Listener = std::function<void(const std::string &event, const nlohmann::json &data)>;
    virtual void listen(Listener listener) = 0;
};

} // namespace vboard_app

#endif
