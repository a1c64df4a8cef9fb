// Bytes that others wrote, made safe to show. Pure functions, safe from any thread.
#pragma once

#include <string>
#include <string_view>

namespace vantricctl {

// The bytes for a terminal: UTF-8 as it stands, a backslash doubled, and as \xNN every byte that is
// not UTF-8 or belongs to a character that controls a terminal or the direction of writing.
std::string shown(std::string_view bytes);

// Two lower-case digits for each byte.
std::string hexadecimal(std::string_view bytes);

}  // namespace vantricctl
