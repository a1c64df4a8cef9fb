// The commands of vantricctl, each in the source of its name. Each returns its exit status or
// throws Failure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vantricctl {

// The names for join, in the order of the types' numbers.
constexpr const char* encryptionNames[] = {
    "none", "wpa", "wpa2", "wpa-wpa2", "wpa-enterprise", "wpa2-enterprise", "wpa-wpa2-enterprise"};

// From the command line. Only the commands named judge them, apart from the two lists of names.
struct Options {
    bool asJson = false;
    uint32_t timeoutSeconds = 0;
    bool skipsRefresh = false;                    // status
    std::string target;                           // switch: "wifi" or "carrier"
    std::string name;                             // join
    std::optional<std::string> encryption;        // join; without it, the server knows the network
    std::optional<std::string> userName;          // join
    std::string file;                             // load-config
    bool keepsWifi = false;                       // load-config
    std::optional<std::string> expectedHostname;  // load-config
    bool isWatching = false;                      // inspect
    bool showsSecrets = false;                    // inspect
};

// Prints the state, with the extended record as it is after a refresh or as it is now.
int showStatus(const Options& options);

// Prints the state, and then a line for each of its changes, until the time is over.
int watch(const Options& options);

// Prints the networks in range, strongest first.
int scan(const Options& options);

// These ask for a change. They print the stage that the request has reached and how long that took,
// and fail unless the state confirms the change.
int switchConnectivity(const Options& options);
int join(const Options& options);  // the password comes from standard input
int forget(const Options& options);
int loadConfig(const Options& options);

// Prints everything that the exchange shows, and findings; fails when there are any. When watching,
// repeats that every second until the time is over.
int inspect(const Options& options);

}  // namespace vantricctl
