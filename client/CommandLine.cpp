#include "client/CommandLine.h"

#include <stdexcept>
#include <string>
#include <string_view>

#include "client/Commands.h"
#include "client/Output.h"

namespace vantricprobe {

namespace {

using com_qel::Orvane::Vantric::ConnectivityType;

void writeUsage() {
    write(
        "Vantric test client.\n"
        "---------------------------------\n"
        "This test client interacts with a running vantric server for testing purpose.\n"
        "\n"
        "vantricprobe --status           --> Periodically report the status obtained from the "
        "server\n"
        "vantricprobe --enablewifi       --> Enable the wifi interface\n"
        "vantricprobe --disablewifi      --> Disable the wifi interface\n"
        "vantricprobe --switchtowifi     --> Enable the wifi interface and wait until it is "
        "confirmed to be online\n"
        "vantricprobe --switchtocarrier  --> Enables the carrier interface and wait until it is "
        "confirmed to be online\n"
        "vantricprobe --setwifi myname   --> Set the name of the wifi network to connect\n"
        "vantricprobe --setConfig configFilename --> Set modem config using a backup config file\n"
        "vantricprobe --setConfigKeepWifi configFilename --> Set the modem config using backup "
        "config file and keeps the WIFI settings\n"
        "vantricprobe --availablewifi    --> Get the list of available wifi networks\n"
        "vantricprobe --forgetwifi       --> Forget the info on the current wifi network\n");
    endLine();
}

// What an option does; exactly one of the two is set, or none for the options that ask for help.
struct Option {
    std::string_view name;
    void (*run)();
    void (*runWithValue)(const std::string& value);
};

constexpr Option options[] = {
    {"-h", nullptr, nullptr},
    {"--help", nullptr, nullptr},
    {"--status", monitorStatus, nullptr},
    {"--enablewifi", [] { switchConnectivity(ConnectivityType::Wifi, AfterRequest::Return); },
     nullptr},
    // Carrier takes over: there is no separate way to disable wifi.
    {"--disablewifi", [] { switchConnectivity(ConnectivityType::Carrier, AfterRequest::Return); },
     nullptr},
    {"--switchtowifi",
     [] { switchConnectivity(ConnectivityType::Wifi, AfterRequest::WaitForChange); }, nullptr},
    {"--switchtocarrier",
     [] { switchConnectivity(ConnectivityType::Carrier, AfterRequest::WaitForChange); }, nullptr},
    {"--setwifi", nullptr, setWifiName},
    {"--setConfig", nullptr, setConfig},
    {"--setConfigKeepWifi", nullptr, setConfigKeepWifi},
    {"--availablewifi", listAvailableWifi, nullptr},
    {"--forgetwifi", forgetWifi, nullptr},
    {"--statuscapi", printExtendedStatus, nullptr},
};

const Option* findOption(std::string_view word) {
    for (const Option& option : options) {
        if (option.name == word) {
            return &option;
        }
    }
    return nullptr;
}

// The message is the one scripts know from a string built from a missing argument.
std::string valueFrom(const char* argument) {
    if (argument == nullptr) {
        throw std::logic_error("basic_string::_M_construct null not valid");
    }
    return argument;
}

}  // namespace

int runCommandLine(int argumentCount, const char* const* arguments) {
    for (int index = 0; index < argumentCount; ++index) {
        const Option* option = findOption(arguments[index]);
        if (option == nullptr) {
            continue;
        }
        if (option->runWithValue != nullptr) {
            option->runWithValue(valueFrom(arguments[index + 1]));
        } else if (option->run != nullptr) {
            option->run();
        } else {
            writeUsage();
            return 0;
        }
    }
    return 0;
}

}  // namespace vantricprobe
