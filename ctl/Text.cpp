#include "ctl/Text.h"

#include <cstddef>
#include <cstdint>

namespace vantricctl {

namespace {

struct Character {
    uint32_t code;
    std::size_t length;  // bytes; 0 when they are not UTF-8
};

// Decodes the first character of `bytes`, which must not be empty.
Character firstCharacter(std::string_view bytes) {
    const auto first = static_cast<unsigned char>(bytes.front());
    if (first < 0x80) {
        return {first, 1};
    }
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || bytes.size() < length) {
        return {0, 0};
    }
    uint32_t code = first & (0xffU >> (length + 1));
    for (std::size_t index = 1; index < length; ++index) {
        const auto byte = static_cast<unsigned char>(bytes[index]);
        if ((byte & 0xc0U) != 0x80) {
            return {0, 0};
        }
        code = code << 6U | (byte & 0x3fU);
    }
    const bool isOverlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool isSurrogate = code >= 0xd800 && code <= 0xdfff;
    return isOverlong || isSurrogate || code > 0x10ffff ? Character{0, 0} : Character{code, length};
}

struct Range {
    uint32_t first;
    uint32_t last;
};

// Control characters, and those that break lines or turn the direction of writing.
constexpr Range unsafe[] = {{0x00, 0x1f},     {0x7f, 0x9f},     {0x61c, 0x61c},
                            {0x200b, 0x200f}, {0x2028, 0x202e}, {0x2060, 0x206f},
                            {0xfeff, 0xfeff}, {0xfff9, 0xfffb}, {0xe0000, 0xe0fff}};

bool isSafe(uint32_t code) {
    for (const Range& range : unsafe) {
        if (code >= range.first && code <= range.last) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string shown(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const Character character = firstCharacter(bytes);
        const std::size_t length = character.length == 0 ? 1 : character.length;
        const std::string_view own = bytes.substr(0, length);
        if (own == "\\") {
            text += "\\\\";
        } else if (character.length != 0 && isSafe(character.code)) {
            text += own;
        } else {
            for (const char byte : own) {
                text += "\\x" + hexadecimal({&byte, 1});
            }
        }
        bytes.remove_prefix(length);
    }
    return text;
}

std::string hexadecimal(std::string_view bytes) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        text += digits[byte >> 4U];
        text += digits[byte & 0xfU];
    }
    return text;
}

}  // namespace vantricctl
