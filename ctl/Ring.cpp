#include "ctl/Ring.h"

#include <algorithm>
#include <cstring>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"

namespace vantricctl {

namespace {

using com_qel::Orvane::Vantric::ClientServer::ModemCommand;

constexpr int noSecret = -1;

struct CommandDescription {
    const char* name;
    ModemCommand command;
    int fieldsBeforeSecret;  // or noSecret
};

constexpr CommandDescription commands[] = {
    {"SwitchToWifi", ModemCommand::SwitchToWifi, noSecret},
    {"SwitchToCarrier", ModemCommand::SwitchToCarrier, noSecret},
    {"SetWifiSsid", ModemCommand::SetWifiSsid, noSecret},
    {"SetWifiPasswordAndEncryptionType", ModemCommand::SetWifiPasswordAndEncryptionType, 1},
    {"SetConfig", ModemCommand::SetConfig, noSecret},
    {"RequestWifiList", ModemCommand::RequestWifiList, noSecret},
    {"RequestModemStatus", ModemCommand::RequestModemStatus, noSecret},
    {"SendText", ModemCommand::SendText, 0},
    {"SendTextPair", ModemCommand::SendTextPair, 0},
    {"SetWifiConnection", ModemCommand::SetWifiConnection, 2},
    {"SetWifiConnectionRadius", ModemCommand::SetWifiConnectionRadius, 3},
};

const CommandDescription* findCommand(uint32_t command) {
    for (const CommandDescription& description : commands) {
        if (static_cast<uint32_t>(description.command) == command) {
            return &description;
        }
    }
    return nullptr;
}

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
    std::size_t offset = 0;
    while (offset < bytes.size()) {
        const std::size_t rest = bytes.size() - offset;
        if (rest < frameHeaderSize) {
            result.push_back({0, bytes.substr(offset), false});
            break;
        }
        const uint32_t length = wordAt(bytes, offset + sizeof(uint32_t));
        const std::size_t begin = offset + frameHeaderSize;
        const bool isComplete = length <= rest - frameHeaderSize;
        result.push_back({wordAt(bytes, offset), bytes.substr(begin, length), isComplete});
        offset = isComplete ? begin + length : bytes.size();
    }
    return result;
}

Ring decodeRing(const SharedFile& file) {
    Ring ring;
    file.copyTo(&ring.memory, attachCountSize, sizeof(ring.memory));
    return ring;
}

const char* commandName(uint32_t command) {
    const CommandDescription* description = findCommand(command);
    return description == nullptr ? "Unknown" : description->name;
}

std::string withoutSecrets(const WaitingFrame& frame) {
    const CommandDescription* description = findCommand(frame.command);
    if (frame.payload.empty() ||
        (description != nullptr && description->fieldsBeforeSecret == noSecret)) {
        return frame.payload;
    }
    std::size_t begin = 0;
    for (int field = 0; description != nullptr && field < description->fieldsBeforeSecret;
         ++field) {
        const std::size_t comma = frame.payload.find(',', begin);
        if (comma == std::string::npos) {
            begin = 0;
            break;
        }
        begin = comma + 1;
    }
    return frame.payload.substr(0, begin) + "(hidden)";
}

}  // namespace vantricctl
