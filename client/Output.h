// Standard output of the commands.
//
// Everything goes through the C stream `stdout`, which the console log shares, so texts and log
// lines keep their order. Texts are written as they are, control characters included.
#pragma once

#include <cstdint>
#include <string_view>

namespace vantricprobe {

void write(std::string_view text);

// In decimal.
void write(int64_t number);

// Writes a newline and flushes.
void endLine();

// Writes each part, then ends the line.
template <class... Parts>
void writeLine(const Parts&... parts) {
    (write(parts), ...);
    endLine();
}

}  // namespace vantricprobe
