#include "tests/end_to_end/LogLines.h"

#include <filesystem>
#include <regex>

namespace vantric_test {

std::string normalised(const std::string& text) {
    static const std::regex stamp(
        R"(\[(Mon|Tue|Wed|Thu|Fri|Sat|Sun) )"
        R"((Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) )"
        R"(( [1-9]|[12][0-9]|3[01]) ([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9] [0-9]{4}\n)");
    static const std::regex line(R"((ModemClientC?)\|(?=[ 0-9]{5}\|) *[1-9][0-9]*\|)");
    return std::regex_replace(std::regex_replace(text, stamp, "[STAMP\n"), line, "$1|LINE|");
}

void refuseConnections() {
    std::filesystem::create_directory("/dev/shm/ModemStateShm");
}

}  // namespace vantric_test
