// A client for a C handle that returns what a test says instead of using shared memory.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Vantric/ModemClient.h"
#include "Vantric/ModemClientC.h"

namespace vantric_test {

inline ModemClientHandle handleOf(com_qel::Orvane::Vantric::ModemClient& client) {
    return reinterpret_cast<ModemClientHandle>(&client);
}

// Notes every call that the blocking C functions make of the client.
class ScriptedClient : public com_qel::Orvane::Vantric::ModemClient {
  public:
    std::vector<std::string> calls;
    // What a read returns; nothing for one that fails. A network without a password is forgotten.
    using Read = std::function<std::optional<std::string>()>;
    Read readPassword = [] { return ""; };
    Read readState = [] { return "OLD"; };
    int32_t encryptionType = 0;
    bool sends = true;
    std::chrono::milliseconds sendTime{0};  // how long each command takes to send

    bool getWifiPasswordAndEncryptionType(int32_t& type, std::string& text) override {
        type = encryptionType;
        return answer("read password", readPassword, text);
    }

    bool setWifiPasswordAndEncryptionType(const int32_t& type,
                                          const std::string& password) override {
        return note("set password " + std::to_string(type) + "," + password);
    }

    bool setWifiConnection(const std::string& ssid, const int32_t& type,
                           const std::string& password) override {
        return note("connect " + ssid + "," + std::to_string(type) + "," + password);
    }

    bool setWifiConnectionRadius(const std::string& ssid, const int32_t& type,
                                 const std::string& username,
                                 const std::string& password) override {
        return note("connect " + ssid + "," + std::to_string(type) + "," + username + "," +
                    password);
    }

    bool getWifiConnectionState(std::string& text) override {
        return answer("read state", readState, text);
    }

  private:
    bool answer(const char* call, const Read& read, std::string& text) {
        calls.emplace_back(call);
        const std::optional<std::string> found = read();
        text = found.value_or("");
        return found.has_value();
    }

    bool note(const std::string& call) {
        calls.push_back(call);
        std::this_thread::sleep_for(sendTime);
        return sends;
    }
};

// Throws from every operation that the C interface uses.
class ThrowingClient : public com_qel::Orvane::Vantric::ModemClient {
  public:
    using WifiInfo = com_qel::Orvane::Vantric::WifiInfo;
    using ModemStatus = com_qel::Orvane::Vantric::ModemStatus;

    bool connect() override { return fail(); }
    bool disconnect() override { return fail(); }
    bool getWifiSSID(std::string&) override { return fail(); }
    bool setWifiSSID(const std::string&) override { return fail(); }
    bool getWifiAvailableListBlocking(std::vector<WifiInfo>&, uint32_t) override { return fail(); }
    bool getModemStatusBlocking(ModemStatus&, uint32_t) override { return fail(); }
    bool setWifiPasswordAndEncryptionType(const int32_t&, const std::string&) override {
        return fail();
    }
    bool setWifiConnection(const std::string&, const int32_t&, const std::string&) override {
        return fail();
    }
    bool setWifiConnectionRadius(const std::string&, const int32_t&, const std::string&,
                                 const std::string&) override {
        return fail();
    }

  private:
    static bool fail() { throw std::runtime_error("thrown by the test"); }
};

}  // namespace vantric_test
