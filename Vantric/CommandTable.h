// The commands that clients send, as people read them.
//
// Internal to this tree: the simulator names and judges the frames that it takes out, vantricctl
// those that wait. Pure data, safe from any thread.
#pragma once

#include <cstdint>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"

namespace com_qel::Orvane::Vantric {

struct CommandDescription {
    ClientServer::ModemCommand command;
    const char* name;
    const char* payload;  // its fields, joined as in the frame; "nothing" when it is empty
};

// In the order of the numbers.
inline constexpr CommandDescription commandTable[] = {
    {ClientServer::ModemCommand::SwitchToWifi, "SwitchToWifi", "nothing"},
    {ClientServer::ModemCommand::SwitchToCarrier, "SwitchToCarrier", "nothing"},
    {ClientServer::ModemCommand::SetWifiSsid, "SetWifiSsid", "ssid"},
    {ClientServer::ModemCommand::SetWifiPasswordAndEncryptionType,
     "SetWifiPasswordAndEncryptionType", "encryption type,password"},
    {ClientServer::ModemCommand::SetConfig, "SetConfig", "file name"},
    {ClientServer::ModemCommand::RequestWifiList, "RequestWifiList", "nothing"},
    {ClientServer::ModemCommand::RequestModemStatus, "RequestModemStatus", "nothing"},
    {ClientServer::ModemCommand::SendText, "SendText", "text"},
    {ClientServer::ModemCommand::SendTextPair, "SendTextPair", "text,text"},
    {ClientServer::ModemCommand::SetWifiConnection, "SetWifiConnection",
     "ssid,encryption type,password"},
    {ClientServer::ModemCommand::SetWifiConnectionRadius, "SetWifiConnectionRadius",
     "ssid,encryption type,user name,password"},
};

// Null for a number that no client sends.
inline const CommandDescription* findCommand(uint32_t command) {
    for (const CommandDescription& description : commandTable) {
        if (static_cast<uint32_t>(description.command) == command) {
            return &description;
        }
    }
    return nullptr;
}

}  // namespace com_qel::Orvane::Vantric
