// A client behind a C handle that does what a test says instead of using shared memory.
#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Vantric/ModemClient.h"
#include "Vantric/ModemClientC.h"

namespace vantric_test {

// Notes every call that the blocking C functions make of the client.
class ScriptedClient : public com_qel::Orvane::Vantric::ModemClient {
  public:
    std::vector<std::string> calls;
    std::function<bool(int32_t&, std::string&)> passwordRead = [](int32_t&, std::string&) {
        return true;
    };
    std::function<bool(std::string&)> stateRead = [](std::string&) { return true; };
    bool sends = true;

    ModemClientHandle handle() { return handleOf(*this); }

    static ModemClientHandle handleOf(com_qel::Orvane::Vantric::ModemClient& client) {
        return reinterpret_cast<ModemClientHandle>(&client);
    }

    bool getWifiPasswordAndEncryptionType(int32_t& encryptionType, std::string& password) override {
        calls.push_back("read password");
        return passwordRead(encryptionType, password);
    }

    bool setWifiPasswordAndEncryptionType(const int32_t& encryptionType,
                                          const std::string& password) override {
        calls.push_back("set password " + std::to_string(encryptionType) + "," + password);
        return sends;
    }

    bool setWifiConnection(const std::string& ssid, const int32_t& encryptionType,
                           const std::string& password) override {
        calls.push_back("connect " + ssid + "," + std::to_string(encryptionType) + "," + password);
        return sends;
    }

    bool setWifiConnectionRadius(const std::string& ssid, const int32_t& encryptionType,
                                 const std::string& username,
                                 const std::string& password) override {
        calls.push_back("connect " + ssid + "," + std::to_string(encryptionType) + "," + username +
                        "," + password);
        return sends;
    }

    bool getWifiConnectionState(std::string& state) override {
        calls.push_back("read state");
        return stateRead(state);
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
