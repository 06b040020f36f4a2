/*
 * http_server.h - the board over HTTP and WebSocket: its requests and events (api/v1.json), and the page.
 *
 *   /                 the page: files that the program carries in itself; without the token
 *   /api/1/...        requests
 *   /api/1/events     WebSocket: events
 *   /api/1/live       WebSocket: the monitor's pictures
 *
 * Threads: one serves all sockets and never waits for the board; requests are carried out by others. A
 * client that does not read what it is sent is dropped, one that is silent is closed; neither holds the
 * board or another client up.
 */
#ifndef VBOARD_APP_SERVER_HTTP_SERVER_H
#define VBOARD_APP_SERVER_HTTP_SERVER_H

#include <memory>
#include <string>

#include "board/board.h"
#include "server/access.h"
#include "server/requests.h"

namespace vboard_app
{

class HttpServer
{
public:
    /*
     * Listen, and serve from now on. It becomes the board's listener.
     * @param address  numeric
     * @param port     0: one that is free
     * @throws std::runtime_error: the address is in use, or not to be had
     */
    HttpServer(Board &board, Requests &requests, const std::string &address, int port);
    ~HttpServer();

    const Access &access() const;

    class Self; // what stands behind it

private:
    std::unique_ptr<Self> self_;
};

} // namespace vboard_app

#endif
