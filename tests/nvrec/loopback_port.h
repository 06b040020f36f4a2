/* loopback_port.h - a port of this machine that takes connections. For tests of who connects. */
#pragma once

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

class LoopbackPort
{
public:
    LoopbackPort() : socket_(socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in any = {};
        any.sin_family = AF_INET;
        any.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof any;
        bind(socket_, reinterpret_cast<sockaddr *>(&any), size);
        listen(socket_, 8);
        getsockname(socket_, reinterpret_cast<sockaddr *>(&any), &size);
        number_ = ntohs(any.sin_port);
    }
    ~LoopbackPort() { close(socket_); }
    LoopbackPort(const LoopbackPort &) = delete;
    LoopbackPort &operator=(const LoopbackPort &) = delete;

    int number() const { return number_; }
    int socket_number() const { return socket_; }

private:
    const int socket_;
    int number_ = 0;
};
