// The commands of vantricctl. Each returns its exit status or throws Failure, Interrupted or
// OutputClosed; its arguments come from the command line and are judged by the command.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vantricctl {

struct CommonOptions {
    bool asJson = false;
    uint32_t timeoutSeconds = 0;
};

// Prints the state, with the extended record as it is after a refresh or as it is now.
int showStatus(const CommonOptions& options, bool isRefreshed);

// Prints the networks in range, strongest first.
int scan(const CommonOptions& options);

// Prints the state, and then a line for each of its changes.
int watch(const CommonOptions& options);

// The commands that ask for a change. They print the stage that the request has reached ("queued",
// "taken", "confirmed") and how long that took, and fail unless the state confirms the change.
int switchConnectivity(const CommonOptions& options, const std::string& target);

struct JoinOptions {
    std::string name;
    std::optional<std::string> encryption;  // without it, the server knows the network
    std::optional<std::string> userName;
};
// The password comes from standard input.
int join(const CommonOptions& options, const JoinOptions& join);

int forget(const CommonOptions& options);

struct LoadOptions {
    std::string file;
    bool keepsWifi = false;
    std::optional<std::string> expectedHostname;
};
int loadConfig(const CommonOptions& options, const LoadOptions& load);

// Prints everything that the exchange shows, and findings; fails when there are any. Repeats that
// every second when `isWatching`, until the time is over.
int inspect(const CommonOptions& options, bool isWatching, bool showSecrets);

}  // namespace vantricctl
