#include "ctl/Ring.h"

#include <algorithm>
#include <cstring>

#include "Vantric/CommandTable.h"

namespace vantricctl {

namespace {

using com_qel::Orvane::Vantric::findCommand;

uint32_t wordAt(const std::string& bytes, std::size_t offset) {
    uint32_t word = 0;
    std::memcpy(&word, bytes.data() + offset, sizeof(word));
    return word;
}

}  // namespace

bool Ring::isPossible() const {
    return isSetUp() && memory.capacity == ringCapacity && memory.readIndex < ringCapacity &&
           memory.writeIndex < ringCapacity;
}

uint32_t Ring::usedBytes() const {
    if (!isPossible()) {
        return 0;
    }
    if (memory.readIndex == memory.writeIndex) {
        return memory.full == 1 ? ringCapacity : 0;
    }
    return (memory.writeIndex - memory.readIndex) % ringCapacity;
}

std::vector<WaitingFrame> Ring::frames() const {
    std::string bytes(usedBytes(), '\0');
    for (uint32_t index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<char>(memory.data[(memory.readIndex + index) % ringCapacity]);
    }
    std::vector<WaitingFrame> result;
    while (bytes.size() >= frameHeaderSize) {
        const uint32_t command = wordAt(bytes, 0);
        const uint32_t length = wordAt(bytes, sizeof(command));
        bytes.erase(0, frameHeaderSize);
        result.push_back({command, bytes.substr(0, length), length <= bytes.size()});
        bytes.erase(0, length);
    }
    if (!bytes.empty()) {
        result.push_back({0, bytes, false});
    }
    return result;
}

const char* WaitingFrame::name() const {
    const auto* known = findCommand(command);
    return known == nullptr ? "Unknown" : known->name;
}

std::string WaitingFrame::withoutSecrets() const {
    const auto* known = findCommand(command);
    const std::string_view format = known == nullptr ? "text" : known->payload;
    const std::size_t secret = std::min(format.find("password"), format.find("text"));
    if (payload.empty() || secret == std::string_view::npos) {
        return payload;
    }
    std::size_t begin = 0;
    for (auto commas = std::count(format.begin(), format.begin() + secret, ','); commas > 0;
         --commas) {
        const std::size_t comma = payload.find(',', begin);
        if (comma == std::string::npos) {
            return "(hidden)";
        }
        begin = comma + 1;
    }
    return payload.substr(0, begin) + "(hidden)";
}

}  // namespace vantricctl
