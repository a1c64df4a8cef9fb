#include "Vantric/ModemClientC.h"

#include <algorithm>
#include <exception>
#include <new>

#include "CoreMisc/src/VyLog.h"
#include "Vantric/ModemClient.h"
#include "Vantric/Utils/Waiting.h"

namespace {

using com_qel::VyLog;
using com_qel::Orvane::Vantric::Deadline;
using com_qel::Orvane::Vantric::EncryptionType;
using com_qel::Orvane::Vantric::ModemClient;
using com_qel::Orvane::Vantric::sleepForPollInterval;

constexpr const char* sourceFile = "Vantric/ModemClientC";
constexpr const char* noConnectionState = "N/A";

constexpr bool isSame(ModemClientEncryption name, EncryptionType type) {
    return static_cast<int32_t>(name) == static_cast<int32_t>(type);
}

static_assert(isSame(MODEM_CLIENT_ENCRYPTION_NONE, EncryptionType::None));
static_assert(isSame(MODEM_CLIENT_ENCRYPTION_WPA_PSK, EncryptionType::WpaPsk));
static_assert(isSame(MODEM_CLIENT_ENCRYPTION_WPA2_PSK, EncryptionType::Wpa2Psk));
static_assert(isSame(MODEM_CLIENT_ENCRYPTION_WPA_WPA2_PSK, EncryptionType::WpaWpa2Psk));
static_assert(isSame(MODEM_CLIENT_ENCRYPTION_WPA_ENTERPRISE, EncryptionType::WpaEnterprise));
static_assert(isSame(MODEM_CLIENT_ENCRYPTION_WPA2_ENTERPRISE, EncryptionType::Wpa2Enterprise));
static_assert(isSame(MODEM_CLIENT_ENCRYPTION_WPA_WPA2_ENTERPRISE,
                     EncryptionType::WpaWpa2Enterprise));

ModemClient* clientOf(ModemClientHandle handle) {
    return reinterpret_cast<ModemClient*>(handle);
}

// Runs `action` when all `pointers` are there. No exception may reach a C caller.
template <class Action, class... Pointers>
bool guarded(Action action, const Pointers*... pointers) noexcept {
    const bool isAnyMissing = ((pointers == nullptr) || ...);
    if (isAnyMissing) {
        return false;
    }
    try {
        return action();
    } catch (const std::exception&) {
        return false;
    }
}

void logTimeout(int line, const char* operation, uint32_t timeoutSeconds) {
    VyLog(VyLog::Warning, sourceFile, line, 0)
        .append(operation)
        .append(" (blocking) timed out after ")
        .append(timeoutSeconds)
        .append(" seconds.\n");
}

// Sets a connection by `request` after forgetting the current one. `operation` names it in the log.
template <class Request>
bool setConnectionBlocking(ModemClientHandle handle, uint32_t timeoutSeconds, const char* operation,
                           Request request) {
    const Deadline deadline(timeoutSeconds);
    if (!modemClientForgetWifiBlocking(handle, timeoutSeconds)) {
        VyLog(VyLog::Error, sourceFile, __LINE__, 0)
            .append(operation)
            .append(" (blocking) failed to forget current wifi settings");
        return false;
    }
    std::string before;
    const bool isKnown = clientOf(handle)->getWifiConnectionState(before);
    const bool isRequested = request();
    if (!isKnown || !isRequested) {
        return false;
    }
    while (!deadline.hasPassed()) {
        std::string state;
        if (clientOf(handle)->getWifiConnectionState(state) && state != before &&
            state != noConnectionState) {
            return true;
        }
        sleepForPollInterval();
    }
    logTimeout(__LINE__, operation, timeoutSeconds);
    return false;
}

}  // namespace

ModemClientHandle modemClientCreate() {
    try {
        return reinterpret_cast<ModemClientHandle>(new ModemClient);
    } catch (const std::exception&) {
        return nullptr;
    }
}

void modemClientDestroy(ModemClientHandle handle) {
    delete clientOf(handle);
}

bool modemClientConnect(ModemClientHandle handle) {
    return guarded([&] { return clientOf(handle)->connect(); }, handle);
}

void modemClientDisconnect(ModemClientHandle handle) {
    guarded([&] { return clientOf(handle)->disconnect(); }, handle);
}

bool modemClientGetWifiSSID(ModemClientHandle handle, char* buffer, uint32_t* size) {
    return guarded(
        [&] {
            std::string ssid;
            if (!clientOf(handle)->getWifiSSID(ssid) || ssid.size() > *size) {
                return false;
            }
            *size = static_cast<uint32_t>(ssid.copy(buffer, ssid.size()));
            return true;
        },
        handle, buffer, size);
}

bool modemClientSetWifiSSID(ModemClientHandle handle, const char* ssid) {
    return guarded([&] { return clientOf(handle)->setWifiSSID(ssid); }, handle, ssid);
}

bool modemClientSetWifiConnection(ModemClientHandle handle, const char* ssid,
                                  int32_t encryptionType, const char* password) {
    return guarded(
        [&] { return clientOf(handle)->setWifiConnection(ssid, encryptionType, password); }, handle,
        ssid, password);
}

bool modemClientSetWifiConnectionRadius(ModemClientHandle handle, const char* ssid,
                                        int32_t encryptionType, const char* username,
                                        const char* password) {
    return guarded(
        [&] {
            return clientOf(handle)->setWifiConnectionRadius(ssid, encryptionType, username,
                                                             password);
        },
        handle, ssid, username, password);
}

bool modemClientGetWifiAvailableListBlocking(ModemClientHandle handle, WifiInfo* array,
                                             uint32_t* count, uint32_t timeoutSeconds) {
    return guarded(
        [&] {
            std::vector<WifiInfo> list;
            if (!clientOf(handle)->getWifiAvailableListBlocking(list, timeoutSeconds)) {
                return false;
            }
            *count = std::min(*count, static_cast<uint32_t>(list.size()));
            std::copy_n(list.begin(), *count, array);
            return *count != 0;
        },
        handle, array, count);
}

bool modemClientGetModemStatusBlocking(ModemClientHandle handle, ModemStatus* status,
                                       uint32_t timeoutSeconds) {
    return guarded(
        [&] { return clientOf(handle)->getModemStatusBlocking(*status, timeoutSeconds); }, handle,
        status);
}

bool modemClientForgetWifiBlocking(ModemClientHandle handle, uint32_t timeoutSeconds) {
    return guarded(
        [&] {
            constexpr int32_t noEncryption = MODEM_CLIENT_ENCRYPTION_NONE;
            if (!clientOf(handle)->setWifiPasswordAndEncryptionType(noEncryption, "0")) {
                return false;
            }
            const Deadline deadline(timeoutSeconds);
            std::string password;
            int32_t encryptionType = noEncryption;
            while (!deadline.hasPassed()) {
                // A failed read is repeated at once, as the contract says.
                if (!clientOf(handle)->getWifiPasswordAndEncryptionType(encryptionType, password)) {
                    continue;
                }
                if (password.empty() && encryptionType == noEncryption) {
                    return true;
                }
                sleepForPollInterval();
            }
            logTimeout(__LINE__, "Forget current wifi settings", timeoutSeconds);
            return false;
        },
        handle);
}

bool modemClientSetWifiConnectionBlocking(ModemClientHandle handle, const char* ssid,
                                          int32_t encryptionType, const char* password,
                                          uint32_t timeoutSeconds) {
    return guarded(
        [&] {
            return setConnectionBlocking(handle, timeoutSeconds, "Set wifi connection", [&] {
                return modemClientSetWifiConnection(handle, ssid, encryptionType, password);
            });
        },
        handle, ssid, password);
}

bool modemClientSetWifiConnectionRadiusBlocking(ModemClientHandle handle, const char* ssid,
                                                int32_t encryptionType, const char* username,
                                                const char* password, uint32_t timeoutSeconds) {
    return guarded(
        [&] {
            return setConnectionBlocking(handle, timeoutSeconds, "Set wifi connection radius", [&] {
                return modemClientSetWifiConnectionRadius(handle, ssid, encryptionType, username,
                                                          password);
            });
        },
        handle, ssid, username, password);
}
