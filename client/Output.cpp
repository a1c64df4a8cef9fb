#include "client/Output.h"

#include <cinttypes>
#include <cstdio>

namespace vantricprobe {

void write(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void write(int64_t number) {
    std::printf("%" PRId64, number);
}

void endLine() {
    std::putchar('\n');
    std::fflush(stdout);
}

}  // namespace vantricprobe
