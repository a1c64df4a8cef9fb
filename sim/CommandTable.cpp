#include "sim/CommandTable.h"

namespace vantric_sim {

const std::vector<CommandDescription>& commandTable() {
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

const CommandDescription* findCommand(uint32_t command) {
    for (const CommandDescription& description : commandTable()) {
        if (static_cast<uint32_t>(description.command) == command) {
            return &description;
        }
    }
    return nullptr;
}

}  // namespace vantric_sim
