/*
 * page_address.h - where the status page listens: "127.0.0.1:9310", "[::1]:9310", "0.0.0.0:9310".
 *
 * Threads: any.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace nvrec::config
{

struct PageAddress {
    std::string host; /* a number, IPv4 or IPv6 */
    uint16_t port = 0;
    bool ipv6 = false;
    bool loopback = false; /* nobody but this machine reaches it */
    bool any = false;      /* all addresses of the machine        */
};

std::optional<PageAddress> page_address(const std::string &text);

/** The page's address for a browser, with the token in it: never to be shown except as a QR code. */
std::string page_link(const std::string &page, const std::string &token);

} // namespace nvrec::config
