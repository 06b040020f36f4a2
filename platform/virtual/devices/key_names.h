/* key_names.h - buttons and keys by name, for whoever presses them from outside. */
#ifndef VBOARD_KEY_NAMES_H
#define VBOARD_KEY_NAMES_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace vboard
{

struct NamedKey {
    const char *name;
    uint32_t code;
};

std::span<const NamedKey> remote_buttons();
std::span<const NamedKey> panel_keys();

/* None when no key has this name, or there is no name. */
std::optional<uint32_t> find_code(std::span<const NamedKey> keys, const char *name);

bool has_code(std::span<const NamedKey> keys, uint32_t code);

/* What to say of a wrong name: the name that is most like it, or all of them when none is. */
std::string suggestion(std::span<const NamedKey> keys, const char *name);

} // namespace vboard

#endif
