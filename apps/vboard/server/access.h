/*
 * access.h - who may talk to the board: whoever knows its token, under its own address, and no page of
 * another server that the same browser shows. Any thread.
 */
#ifndef VBOARD_APP_SERVER_ACCESS_H
#define VBOARD_APP_SERVER_ACCESS_H

#include <string>
#include <string_view>

namespace vboard_app
{

/* 32 hexadecimal digits that nobody can guess. @throws std::runtime_error: the system has none */
std::string make_token();

class Access
{
public:
    /* @param address  that is listened on, numeric */
    Access(std::string address, int port, std::string token);

    /*
     * Whether the headers Host and Origin are this board's (an empty Origin is none). A browser sends
     * them as they are whatever a page does: another server's name that leads here is told by Host,
     * another server's page by Origin.
     */
    bool is_own_host(std::string_view host) const;
    bool is_own_origin(std::string_view origin, std::string_view host) const;

    /* The token as "Authorization: Bearer" or in the address; either may be empty. */
    bool knows_token(std::string_view authorization, std::string_view from_address) const;

    const std::string &token() const { return token_; }
    std::string url() const; // http://127.0.0.1:PORT/

private:
    const std::string address_;
    const int port_;
    const std::string token_;
};

} // namespace vboard_app

#endif
