// The command join.
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "ctl/Request.h"

namespace vantricctl {

namespace {

using namespace com_qel::Orvane::Vantric;

constexpr std::size_t longestName = 32;
constexpr std::size_t longestPassword = 31;
constexpr std::size_t longestUserName = 255;
constexpr std::size_t longestInput = 4096;

// Silences a terminal while it lives; other input is left alone.
class NoEcho {
  public:
    explicit NoEcho(const char* prompt) : isTerminal_(tcgetattr(STDIN_FILENO, &before_) == 0) {
        if (isTerminal_) {
            termios silent = before_;
            silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
            std::fprintf(stderr, "%s", prompt);
        }
    }
    ~NoEcho() {
        if (isTerminal_) {
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
            std::fprintf(stderr, "\n");
        }
    }

    NoEcho& operator=(NoEcho&&) = delete;

  private:
    termios before_ = {};
    bool isTerminal_;
};

// The first line of standard input; on a terminal after a prompt, without echo.
std::string readPassword() {
    const NoEcho noEcho("Password: ");
    std::string password;
    char character = 0;
    while (password.size() < longestInput) {
        // A signal ends this wait, unlike a read, so the check comes right after it.
        pollfd input = {STDIN_FILENO, POLLIN, 0};
        const int ready = poll(&input, 1, 100);
        checkSignals();
        if (ready <= 0) {
            continue;
        }
        if (read(STDIN_FILENO, &character, 1) != 1 || character == '\n') {
            break;
        }
        password += character;
    }
    return password;
}

// For a text that the exchange joins with others.
void requireField(const char* what, const std::string& text, std::size_t longest) {
    requireLength(what, text, longest);
    if (text.find(',') != std::string::npos) {
        throw Failure(
            statusWrongUse,
            std::string(what) + " must not hold a comma, which the exchange cannot carry.");
    }
}

// The server keeps the credentials of a network that it knows.
Change joinKnown(const std::string& name) {
    return {ModemCommand::SetWifiSsid, name,
            [=](const ModemState& state) { return fieldView(state.wifiSsid) == name; }};
}

Change joinNew(const std::string& name, int32_t type, const std::optional<std::string>& userName) {
    requireField("The name", name, longestName);
    if (userName) {
        requireField("The user name", *userName, longestUserName);
    }
    std::string password;
    if (type != static_cast<int32_t>(EncryptionType::None)) {
        password = readPassword();
        requireLength("The password", password, longestPassword);
    }
    const std::string fields = name + "," + std::to_string(type) + ",";
    return {userName ? ModemCommand::SetWifiConnectionRadius : ModemCommand::SetWifiConnection,
            fields + (userName ? *userName + "," : "") + password, [=](const ModemState& state) {
                const auto connection = fieldView(state.wifiConnectionState);
                return fieldView(state.wifiSsid) == name && state.wifiEncryptionType == type &&
                       fieldView(state.wifiPassword) == password && !connection.empty() &&
                       connection != "N/A";
            }};
}

}  // namespace

int join(const Options& options) {
    const std::string encryption = options.encryption.value_or(encryptionNames[0]);
    const auto type = static_cast<int32_t>(
        std::find(std::begin(encryptionNames), std::end(encryptionNames), encryption) -
        std::begin(encryptionNames));
    const bool isEnterprise = type >= static_cast<int32_t>(EncryptionType::WpaEnterprise);
    requireLength("The name", options.name, longestName);
    if (options.userName.has_value() != isEnterprise) {
        throw Failure(statusWrongUse, isEnterprise
                                          ? "This encryption needs --username."
                                          : "--username is for the enterprise encryptions alone.");
    }
    return carryOut(options, options.encryption ? joinNew(options.name, type, options.userName)
                                                : joinKnown(options.name));
}

}  // namespace vantricctl
