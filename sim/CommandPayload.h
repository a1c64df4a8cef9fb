// Taking the payloads of commands apart.
//
// Fields are joined by "," without escaping. A field takes everything up to its comma and the last
// one the rest, so only the last may hold commas. Every function returns empty for a malformed
// payload. Pure functions, safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantric_sim {

struct Encryption {
    int32_t type;
    std::string password;

    // What clients send to have the network forgotten: type 0 with the password "0".
    bool isRequestToForget() const { return type == 0 && password == "0"; }
};

struct Connection {
    std::string ssid;
    Encryption encryption;
};

// "encryption type,password"
std::optional<Encryption> parseEncryption(std::string_view payload);

// "ssid,encryption type,password"
std::optional<Connection> parseConnection(std::string_view payload);

// "ssid,encryption type,user name,password"; the user name goes nowhere.
std::optional<Connection> parseRadiusConnection(std::string_view payload);

// The host name that the configuration of a file name brings: its base name without extension.
std::optional<std::string> configurationName(std::string_view fileName);

}  // namespace vantric_sim
