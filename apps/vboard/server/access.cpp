/* access.cpp - see access.h. */
#include "server/access.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <arpa/inet.h>
#include <sys/random.h>

namespace vboard_app
{
namespace
{

std::string lower(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return result;
}

bool is_numeric_address(const std::string &address)
{
    in6_addr bytes;
    return inet_pton(AF_INET, address.c_str(), &bytes) == 1 ||
           inet_pton(AF_INET6, address.c_str(), &bytes) == 1;
}

/* In a time that does not tell how much of it is right. */
bool same_secret(std::string_view one, std::string_view other)
{
    if (one.size() != other.size()) return false;
    unsigned difference = 0;
    for (size_t i = 0; i < one.size(); ++i)
        difference |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
    return difference == 0;
}

} // namespace

std::string make_token()
{
    unsigned char bytes[16];
    if (getrandom(bytes, sizeof bytes, 0) != sizeof bytes)
        throw std::runtime_error(std::string("the system gives no random numbers: ") + std::strerror(errno));
    std::string token;
    for (const unsigned char byte : bytes) {
        token += "0123456789abcdef"[byte >> 4];
        token += "0123456789abcdef"[byte & 15];
    }
    return token;
}

Access::Access(std::string address, int port, std::string token)
    : address_(std::move(address)), port_(port), token_(std::move(token))
{
}

bool Access::is_own_host(std::string_view host) const
{
    std::string name = lower(host);
    const std::string port = ":" + std::to_string(port_);
    if (name.size() > port.size() && name.compare(name.size() - port.size(), port.size(), port) == 0)
        name.resize(name.size() - port.size());
    else if (port_ != 80)
        return false;
    if (name.size() > 2 && name.front() == '[' && name.back() == ']') name = name.substr(1, name.size() - 2);
    if (name == address_ || name == "localhost" || name == "127.0.0.1" || name == "::1") return true;
    // Listening on all addresses, it has each of them; names could be anybody's.
    return (address_ == "0.0.0.0" || address_ == "::") && is_numeric_address(name);
}

bool Access::is_own_origin(std::string_view origin, std::string_view host) const
{
    return origin.empty() || (lower(origin) == "http://" + lower(host) && is_own_host(host));
}

bool Access::knows_token(std::string_view authorization, std::string_view from_address) const
{
    constexpr std::string_view kBearer = "Bearer ";
    if (authorization.size() > kBearer.size() && lower(authorization.substr(0, kBearer.size())) == "bearer ")
        return same_secret(authorization.substr(kBearer.size()), token_);
    return same_secret(from_address, token_);
}

std::string Access::url() const
{
    const std::string host = address_ == "0.0.0.0" ? "127.0.0.1" : address_ == "::" ? "::1" : address_;
    const bool is_long = host.find(':') != std::string::npos;
    return "http://" + (is_long ? "[" + host + "]" : host) + ":" + std::to_string(port_) + "/";
}

} // namespace vboard_app
