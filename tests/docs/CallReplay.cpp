#include <functional>
#include <map>
#include <regex>

#include "Vantric/ModemClient.h"
#include "tests/docs/ByteLines.h"
#include "tests/docs/EmptySharedMemory.h"
#include "tests/docs/ProtocolBlocks.h"
#include "tests/support/PublishedServer.h"

namespace vantric_test {

namespace {

using Vantric::ModemClient;
using Arguments = std::vector<std::string>;  // texts without their quotes
using Call = std::function<bool(ModemClient&, const Arguments&)>;

int32_t number(const std::string& argument) {
    return static_cast<int32_t>(std::stol(argument));
}

// By name; an argument that is missing throws std::out_of_range.
const std::map<std::string, Call>& calls() {
    static const std::map<std::string, Call> table = {
        {"setConnectivityType",
         [](auto& client, auto& given) { return client.setConnectivityType(number(given.at(0))); }},
        {"setWifiSSID", [](auto& client, auto& given) { return client.setWifiSSID(given.at(0)); }},
        {"setWifiPasswordAndEncryptionType",
         [](auto& client, auto& given) {
             return client.setWifiPasswordAndEncryptionType(number(given.at(0)), given.at(1));
         }},
        {"setConfig", [](auto& client, auto& given) { return client.setConfig(given.at(0)); }},
        {"getWifiAvailableListBlocking",
         [](auto& client, auto&) {
             std::vector<WifiInfo> list;
             return client.getWifiAvailableListBlocking(list, 0);
         }},
        {"getModemStatusBlocking",
         [](auto& client, auto&) {
             ModemStatus status;
             return client.getModemStatusBlocking(status, 0);
         }},
        {"sendTextCommand",
         [](auto& client, auto& given) { return client.sendTextCommand(given.at(0)); }},
        {"sendTextPairCommand",
         [](auto& client, auto& given) {
             return client.sendTextPairCommand(given.at(0), given.at(1));
         }},
        {"setWifiConnection",
         [](auto& client, auto& given) {
             return client.setWifiConnection(given.at(0), number(given.at(1)), given.at(2));
         }},
        {"setWifiConnectionRadius", [](auto& client, auto& given) {
             return client.setWifiConnectionRadius(given.at(0), number(given.at(1)), given.at(2),
                                                   given.at(3));
         }}};
    return table;
}

// Numbers and texts in double quotes, between commas.
Arguments argumentsOf(const std::string& text) {
    static const std::regex form("\"([^\"]*)\"|(-?[0-9]+)");
    Arguments result;
    for (std::sregex_iterator match(text.begin(), text.end(), form), end; match != end; ++match) {
        result.push_back((*match)[1].matched ? (*match)[1] : (*match)[2]);
    }
    return result;
}

std::string textOf(const Frames& frames) {
    std::string text;
    for (const Frame& frame : frames) {
        text += std::to_string(frame.command);
        if (!frame.payload.empty()) {
            text.append(" \"").append(frame.payload).append("\"");
        }
    }
    return text.empty() ? "nothing" : text;
}

void replayCall(ModemClient& client, PublishedServer& server, const TextLine& line) {
    static const std::regex form(R"(([a-zA-Z]+)\((.*)\) +(true|false)  (.+))");
    std::smatch match;
    if (!std::regex_match(line.text, match, form)) {
        throw DocumentFault(line.number, "not a call with its result and frame: " + line.text);
    }
    const auto call = calls().find(match[1]);
    if (call == calls().end()) {
        throw DocumentFault(line.number, "no such call: " + match[1].str());
    }
    const std::string result = call->second(client, argumentsOf(match[2])) ? "true" : "false";
    const std::string frames = textOf(server.takeFrames());
    if (result != match[3] || frames != match[4]) {
        throw DocumentFault(line.number, "the call gives " + result + " and sends " + frames);
    }
}

}  // namespace

void replayCalls(const CodeBlock& block) {
    emptySharedMemory();
    PublishedServer server;
    server.state.publish(freshState());
    server.extendedState.publish(someExtendedState(1));
    server.wifiList.publish(wifiListOf({}, 1));
    ModemClient client;
    client.connect();
    for (const TextLine& line : block.lines) {
        if (!line.text.empty()) {
            replayCall(client, server, line);
        }
    }
}

}  // namespace vantric_test
