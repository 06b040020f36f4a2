/* address.cpp - see address.h. */
#include "camera/address.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>

namespace nvrec
{
namespace
{

constexpr std::string_view kHidden = "***";

/* Names of values in a path or a query that give access to a camera. */
constexpr std::array<std::string_view, 17> kSecretNames = {
    "user", "username", "usr", "loginuse", "password", "passwd", "pass",   "pwd", "psw",
    "pw",   "loginpas", "key", "apikey",   "token",    "auth",   "secret", "sig"};

/* A zero letter is none of them, but std::strchr() would find the text's end for it. */
bool is_one_of(char letter, const char *letters)
{
    return letter != '\0' && std::strchr(letters, letter) != nullptr;
}

bool same_letters(std::string_view a, std::string_view b)
{
    return std::ranges::equal(
        a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

bool is_secret_name(std::string_view name)
{
    return std::ranges::any_of(kSecretNames,
                               [name](std::string_view known) { return same_letters(name, known); });
}

/* The letters behind the host that separate names from values, and values from each other. */
bool is_separator(char letter)
{
    return is_one_of(letter, "/?&;=#_,");
}

/* NAME=VALUE, as long as there are any: the values of secret names are hidden. */
std::string hide_values(std::string_view rest)
{
    std::string shown;
    while (!rest.empty()) {
        const size_t equals = rest.find('=');
        if (equals == std::string_view::npos) break;
        size_t name_at = equals;
        while (name_at > 0 && !is_separator(rest[name_at - 1]))
            --name_at;
        const std::string_view name = rest.substr(name_at, equals - name_at);
        shown += rest.substr(0, equals + 1);
        rest.remove_prefix(equals + 1);
        if (!is_secret_name(name)) continue;
        const size_t end = std::min(rest.find_first_of("&;/?#, '\""), rest.size());
        if (end > 0) shown += kHidden;
        rest.remove_prefix(end);
    }
    return shown.append(rest);
}

/* Where the scheme in front of "://" begins, and whether there is one. */
size_t scheme_begin(std::string_view text, size_t colon)
{
    size_t at = colon;
    while (at > 0 &&
           (std::isalnum(static_cast<unsigned char>(text[at - 1])) != 0 || is_one_of(text[at - 1], "+-.")))
        --at;
    return at;
}

/* One address: what follows "://" up to its end. */
std::string hide_in_address(std::string_view behind_scheme)
{
    const size_t host_end = std::min(behind_scheme.find_first_of("/?#"), behind_scheme.size());
    /* A password may contain any letter unescaped: hide too much rather than show a piece of it. */
    const size_t last = behind_scheme.rfind('@');
    const bool has_user = behind_scheme.substr(0, host_end).find_first_of("@:") != std::string_view::npos;
    const size_t at = has_user ? last : std::string_view::npos;
    std::string shown;
    if (at != std::string_view::npos) {
        shown = std::string(kHidden) + "@";
        behind_scheme.remove_prefix(at + 1);
    }
    return shown + hide_values(behind_scheme);
}

std::string percent_encoded(const std::string &text)
{
    constexpr const char *kDigits = "0123456789ABCDEF";
    std::string encoded;
    for (const char letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (std::isalnum(code) != 0 || is_one_of(letter, "-._~")) {
            encoded += letter;
        } else {
            encoded += '%';
            encoded += kDigits[code >> 4];
            encoded += kDigits[code & 15];
        }
    }
    return encoded;
}

/* user:password@host:port of an address; empty = it is no network address. */
std::string_view authority_of(std::string_view address)
{
    const size_t scheme = address.find("://");
    if (scheme == std::string_view::npos) return {};
    address.remove_prefix(scheme + 3);
    return address.substr(0, std::min(address.find_first_of("/?#"), address.size()));
}

} // namespace

bool is_network_address(std::string_view address)
{
    return same_letters(address.substr(0, 7), "rtsp://") || same_letters(address.substr(0, 8), "rtsps://");
}

std::string shown_text(std::string_view text)
{
    std::string shown;
    for (;;) {
        const size_t colon = text.find("://");
        const size_t begin = colon == std::string_view::npos ? colon : scheme_begin(text, colon);
        if (colon == std::string_view::npos) return shown.append(text);
        const bool has_scheme = begin != colon;
        shown += text.substr(0, colon + 3);
        text.remove_prefix(colon + 3);
        const size_t end = std::min(text.find_first_of(" \t\n\r\"'"), text.size());
        shown += has_scheme ? hide_in_address(text.substr(0, end)) : std::string(text.substr(0, end));
        text.remove_prefix(end);
    }
}

std::string shown_address(std::string_view address)
{
    const size_t colon = address.find("://");
    if (colon == std::string_view::npos || scheme_begin(address, colon) == colon) return std::string(address);
    /* The whole of it is one address, whatever letters a password is made of. */
    return std::string(address.substr(0, colon + 3)) + hide_in_address(address.substr(colon + 3));
}

bool carries_credentials(std::string_view text)
{
    return shown_address(text) != text || shown_text(text) != text;
}

std::string with_credentials(const std::string &address, const std::string &user, const std::string &password)
{
    if (!is_network_address(address) || (user.empty() && password.empty())) return address;
    if (authority_of(address).find('@') != std::string_view::npos) return address;
    const size_t behind_scheme = address.find("://") + 3;
    return address.substr(0, behind_scheme) + percent_encoded(user) + ":" + percent_encoded(password) + "@" +
           address.substr(behind_scheme);
}

std::string host_of(std::string_view address)
{
    std::string_view authority = authority_of(address);
    const size_t at = authority.rfind('@');
    if (at != std::string_view::npos) authority.remove_prefix(at + 1);
    if (authority.starts_with('[')) return std::string(authority.substr(1, authority.find(']') - 1));
    return std::string(authority.substr(0, std::min(authority.find(':'), authority.size())));
}

std::vector<std::string> take_arguments(int argc, char **argv, bool *blanked)
{
    std::vector<std::string> arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.emplace_back(argv[i]);
        const std::string &whole = arguments.back();
        if (!carries_credentials(whole)) continue;
        /* CH=ADDRESS and --option=ADDRESS have the address behind other letters. */
        const std::string shown = shown_address(whole);
        const size_t kept = std::min(shown.size(), whole.size());
        std::memset(argv[i], 0, whole.size());
        std::memcpy(argv[i], shown.data(), kept);
        *blanked = true;
    }
    return arguments;
}

} // namespace nvrec
