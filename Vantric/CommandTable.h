// The commands that clients send, as people read them.
//
// Internal to this tree: the simulator names and judges the frames that it takes out, vantricctl
// those that wait. Pure data, safe from any thread.
#pragma once

#include <cstdint>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"

namespace com_qel::Orvane::Vantric {

struct CommandDescription {
    ClientServer::ModemCommand command;
    const char* name;
    const char* payload;  // its fields, joined as in the frame; "nothing" when it is empty
};

// In the order of the numbers.
inline const std::vector<CommandDescription>& commandTable() {
    using ClientServer::ModemCommand;
    static const std::vector<CommandDescription> table = {
        {ModemCommand::SwitchToWifi, "SwitchToWifi", "nothing"},
        {ModemCommand::SwitchToCarrier, "SwitchToCarrier", "nothing"},
        {ModemCommand::SetWifiSsid, "SetWifiSsid", "ssid"},
        {ModemCommand::SetWifiPasswordAndEncryptionType, "SetWifiPasswordAndEncryptionType",
         "encryption type,password"},
        {ModemCommand::SetConfig, "SetConfig", "file name"},
        {ModemCommand::RequestWifiList, "RequestWifiList", "nothing"},
        {ModemCommand::RequestModemStatus, "RequestModemStatus", "nothing"},
        {ModemCommand::SendText, "SendText", "text"},
        {ModemCommand::SendTextPair, "SendTextPair", "text,text"},
        {ModemCommand::SetWifiConnection, "SetWifiConnection", "ssid,encryption type,password"},
        {ModemCommand::SetWifiConnectionRadius, "SetWifiConnectionRadius",
         "ssid,encryption type,user name,password"},
    };
    return table;
}

// Null for a number that no client sends.
inline const CommandDescription* findCommand(uint32_t command) {
    for (const CommandDescription& description : commandTable()) {
        if (static_cast<uint32_t>(description.command) == command) {
            return &description;
        }
    }
    return nullptr;
}

}  // namespace com_qel::Orvane::Vantric
