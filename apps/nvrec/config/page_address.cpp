/* page_address.cpp - see page_address.h. */
#include "config/page_address.h"

#include <cctype>
#include <charconv>
#include <string_view>

#include <arpa/inet.h>

namespace nvrec::config
{
namespace
{

/* Write letters that have a meaning of their own in an address as %XX. */
std::string encoded(const std::string &text)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string code;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        if (std::isalnum(byte) != 0) {
            code += letter;
        } else {
            code += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return code;
}

} // namespace

std::optional<PageAddress> page_address(const std::string &text)
{
    PageAddress address;
    const size_t colon = text.rfind(':');
    if (colon == std::string::npos) return std::nullopt;
    const char *end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data() + colon + 1, end, address.port);
    if (error != std::errc() || rest != end || address.port == 0) return std::nullopt;
    address.host = text.substr(0, colon);
    address.ipv6 = address.host.size() > 2 && address.host.front() == '[' && address.host.back() == ']';
    if (address.ipv6) {
        address.host = address.host.substr(1, address.host.size() - 2);
        in6_addr number = {};
        if (inet_pton(AF_INET6, address.host.c_str(), &number) != 1) return std::nullopt;
        address.loopback = IN6_IS_ADDR_LOOPBACK(&number);
        address.any = IN6_IS_ADDR_UNSPECIFIED(&number);
        return address;
    }
    in_addr number = {};
    if (inet_pton(AF_INET, address.host.c_str(), &number) != 1) return std::nullopt;
    address.loopback = (ntohl(number.s_addr) >> 24) == 127;
    address.any = number.s_addr == INADDR_ANY;
    return address;
}

std::string page_link(const std::string &page, const std::string &token)
{
    return "http://" + page + "/?token=" + encoded(token);
}

} // namespace nvrec::config
