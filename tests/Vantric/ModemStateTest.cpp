#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "Vantric/ModemState.h"
#include "tests/support/PublishedServer.h"

namespace {

using namespace com_qel::Orvane::Vantric;
using vantric_test::setText;

constexpr int32_t lowest = std::numeric_limits<int32_t>::min();
constexpr int32_t highest = std::numeric_limits<int32_t>::max();

// The bytes of a record as the server writes them, independent of the record's declaration.
class RawRecord {
  public:
    explicit RawRecord(std::size_t size) : bytes_(size, 0) {}

    void putNumber(std::size_t offset, int32_t value) {
        const auto bits = static_cast<uint32_t>(value);
        for (std::size_t index = 0; index < sizeof(bits); ++index) {
            bytes_.at(offset + index) = static_cast<unsigned char>(bits >> (8 * index));
        }
    }

    void putText(std::size_t offset, const std::string& text) {
        for (std::size_t index = 0; index < text.size(); ++index) {
            bytes_.at(offset + index) = static_cast<unsigned char>(text[index]);
        }
    }

    template <class Record>
    Record as() const {
        EXPECT_EQ(bytes_.size(), sizeof(Record));
        Record record;
        std::memcpy(&record, bytes_.data(), std::min(sizeof(record), bytes_.size()));
        return record;
    }

  private:
    std::vector<unsigned char> bytes_;
};

template <std::size_t size>
bool isZeroFrom(const char (&field)[size], std::size_t offset) {
    return std::all_of(field + offset, field + size, [](char byte) { return byte == '\0'; });
}

WifiListEntry entryNamed(const std::string& ssid, int32_t encryptionType) {
    WifiListEntry entry = {};
    setText(entry.ssid, ssid);
    entry.encryptionType = encryptionType;
    entry.signalLevel = -50;
    return entry;
}

}  // namespace

TEST(ModemState, namesEveryConnectivity) {
    EXPECT_EQ(connectivityTypeName(0), "None");
    EXPECT_EQ(connectivityTypeName(1), "Wifi");
    EXPECT_EQ(connectivityTypeName(2), "Carrier");
}

TEST(ModemState, namesAnyOtherConnectivityUnknown) {
    for (const int32_t type : {3, -1, lowest, highest}) {
        EXPECT_EQ(connectivityTypeName(type), "Unknown connectivity") << type;
    }
}

TEST(ModemState, namesEveryEncryption) {
    EXPECT_EQ(encryptionTypeName(0), "None");
    EXPECT_EQ(encryptionTypeName(1), "WPA(PSK)");
    EXPECT_EQ(encryptionTypeName(2), "WPA2 (PSK)");
    EXPECT_EQ(encryptionTypeName(3), "WPA+WPA2 (PSK)");
    EXPECT_EQ(encryptionTypeName(4), "WPA Enterprise (RADIUS)");
    EXPECT_EQ(encryptionTypeName(5), "WPA2 Enterprise (RADIUS)");
    EXPECT_EQ(encryptionTypeName(6), "WPA+WPA2 Enterprise (RADIUS)");
}

TEST(ModemState, namesAnyOtherEncryptionUnknown) {
    for (const int32_t type : {7, -1, lowest, highest}) {
        EXPECT_EQ(encryptionTypeName(type), "Unknown encryption type") << type;
    }
}

TEST(ModemState, numbersTheEnumerationsAsTheServerDoes) {
    EXPECT_EQ(connectivityTypeName(static_cast<int32_t>(ConnectivityType::None)), "None");
    EXPECT_EQ(connectivityTypeName(static_cast<int32_t>(ConnectivityType::Wifi)), "Wifi");
    EXPECT_EQ(connectivityTypeName(static_cast<int32_t>(ConnectivityType::Carrier)), "Carrier");
    const EncryptionType types[] = {EncryptionType::None,
                                    EncryptionType::WpaPsk,
                                    EncryptionType::Wpa2Psk,
                                    EncryptionType::WpaWpa2Psk,
                                    EncryptionType::WpaEnterprise,
                                    EncryptionType::Wpa2Enterprise,
                                    EncryptionType::WpaWpa2Enterprise};
    for (int32_t value = 0; value < 7; ++value) {
        EXPECT_EQ(static_cast<int32_t>(types[value]), value);
    }
}

TEST(ModemState, laysTheBasicStateOverTheServersBytes) {
    RawRecord raw(141);
    raw.putNumber(0, 1700000000);
    raw.putNumber(4, -2);
    raw.putText(8, "the wifi name");
    raw.putText(41, "the password");
    raw.putNumber(73, 0x12345678);
    raw.putText(77, "the host name");
    raw.putText(109, "the connection state");
    const auto state = raw.as<ModemState>();
    EXPECT_EQ(int32_t{state.timestamp}, 1700000000);
    EXPECT_EQ(int32_t{state.connectivityType}, -2);
    EXPECT_STREQ(state.wifiSsid, "the wifi name");
    EXPECT_STREQ(state.wifiPassword, "the password");
    EXPECT_EQ(int32_t{state.wifiEncryptionType}, 0x12345678);
    EXPECT_STREQ(state.hostname, "the host name");
    EXPECT_STREQ(state.wifiConnectionState, "the connection state");
}

TEST(ModemState, laysTheExtendedStateOverTheServersBytes) {
    RawRecord raw(156);
    raw.putNumber(0, 99);
    raw.putNumber(4, -71);
    raw.putText(8, "the wifi name");
    raw.putNumber(44, 5);
    raw.putText(48, "the encryption name");
    raw.putNumber(112, 0x12345678);
    raw.putText(116, "10.0.0.1");
    raw.putText(132, "00:11:22:33:44:55");
    raw.putNumber(152, 7);
    const auto state = raw.as<ModemStateExtended>();
    EXPECT_EQ(int32_t{state.serverWord}, 99);
    EXPECT_EQ(int32_t{state.carrierSignalLevel}, -71);
    EXPECT_STREQ(state.wifiSsid, "the wifi name");
    EXPECT_EQ(int32_t{state.wifiEncryptionType}, 5);
    EXPECT_STREQ(state.wifiEncryptionName, "the encryption name");
    EXPECT_EQ(int32_t{state.wifiSignalLevel}, 0x12345678);
    EXPECT_STREQ(state.ipv4Address, "10.0.0.1");
    EXPECT_STREQ(state.macAddress, "00:11:22:33:44:55");
    EXPECT_EQ(int32_t{state.updateCounter}, 7);
}

TEST(ModemState, laysTheWifiListOverTheServersBytes) {
    RawRecord raw(4108);
    raw.putText(0, "first");
    constexpr std::size_t last = 4059;
    raw.putText(last, "last");
    raw.putNumber(last + 33, 6);
    raw.putNumber(last + 37, 0x12345678);
    raw.putNumber(4100, 100);
    raw.putNumber(4104, -3);
    const auto list = raw.as<WifiInfosList>();
    EXPECT_STREQ(list.entries[0].ssid, "first");
    EXPECT_STREQ(list.entries[99].ssid, "last");
    EXPECT_EQ(int32_t{list.entries[99].encryptionType}, 6);
    EXPECT_EQ(int32_t{list.entries[99].signalLevel}, 0x12345678);
    EXPECT_EQ(int32_t{list.count}, 100);
    EXPECT_EQ(int32_t{list.updateCounter}, -3);
}

TEST(ModemState, keepsTheRecordsFreeOfPadding) {
    EXPECT_EQ(sizeof(ModemState), 141U);
    EXPECT_EQ(sizeof(ModemStateExtended), 156U);
    EXPECT_EQ(sizeof(WifiListEntry), 41U);
    EXPECT_EQ(sizeof(WifiInfosList), 4108U);
    EXPECT_EQ(sizeof(WifiInfo), 108U);
    EXPECT_EQ(sizeof(ModemStatus), 152U);
}

TEST(ModemState, endsAFieldsTextAtItsNul) {
    char field[8] = {'a', 'b', '\0', 'c', 'd', 'e', 'f', 'g'};
    EXPECT_EQ(fieldText(field), "ab");
    field[0] = '\0';
    EXPECT_EQ(fieldText(field), "");
}

TEST(ModemState, endsTheTextOfAFieldWithoutNulAtTheFieldsEnd) {
    struct {
        char field[4];
        char behind[4];
    } const record = {{'a', 'b', 'c', 'd'}, {'e', 'f', 'g', '\0'}};
    EXPECT_EQ(fieldText(record.field), "abcd");
}

TEST(ModemState, buildsANetworkFromAListEntry) {
    const WifiInfo info = makeWifiInfo(entryNamed("office", 1));
    EXPECT_STREQ(info.ssid, "office");
    EXPECT_EQ(info.encryptionType, 1);
    EXPECT_STREQ(info.encryptionName, "WPA(PSK)");
    EXPECT_EQ(info.signalLevel, -50);
}

TEST(ModemState, buildsANetworkWithZeroBytesBehindItsTexts) {
    const WifiInfo info = makeWifiInfo(entryNamed("office", 6));
    EXPECT_TRUE(isZeroFrom(info.ssid, std::strlen("office")));
    EXPECT_TRUE(isZeroFrom(info.encryptionName, std::strlen("WPA+WPA2 Enterprise (RADIUS)")));
}

TEST(ModemState, buildsANetworkOfUnknownEncryption) {
    const WifiInfo info = makeWifiInfo(entryNamed("office", -4));
    EXPECT_EQ(info.encryptionType, -4);
    EXPECT_STREQ(info.encryptionName, "Unknown encryption type");
}

TEST(ModemState, buildsANetworkFromANameWithoutNul) {
    const std::string wholeField(33, 'n');
    const WifiInfo info = makeWifiInfo(entryNamed(wholeField, 0));
    EXPECT_EQ(info.ssid, wholeField);
    EXPECT_TRUE(isZeroFrom(info.ssid, wholeField.size()));
}

TEST(ModemState, buildsAStatusWithItsOwnEncryptionName) {
    ModemStateExtended state = vantric_test::someExtendedState(1);
    setText(state.wifiEncryptionName, "anything else");
    state.wifiEncryptionType = 2;
    EXPECT_STREQ(makeModemStatus(state).wifiEncryptionName, "WPA2 (PSK)");
}

TEST(ModemState, buildsAStatusThatKeepsTheServersBytesBehindTheEncryptionName) {
    ModemStateExtended state = vantric_test::someExtendedState(1);
    setText(state.wifiEncryptionName, std::string(64, 'x'));
    state.wifiEncryptionType = 0;
    const ModemStatus status = makeModemStatus(state);
    const std::string expected = std::string("None") + '\0' + std::string(59, 'x');
    EXPECT_EQ(std::string(status.wifiEncryptionName, 64), expected);
}

TEST(ModemState, buildsAStatusFromEveryOtherByteOfTheState) {
    unsigned char bytes[sizeof(ModemStateExtended)];
    for (std::size_t index = 0; index < sizeof(bytes); ++index) {
        bytes[index] = static_cast<unsigned char>(index + 1);
    }
    ModemStateExtended state;
    std::memcpy(&state, bytes, sizeof(state));
    const ModemStatus status = makeModemStatus(state);
    unsigned char statusBytes[sizeof(ModemStatus)];
    std::memcpy(statusBytes, &status, sizeof(statusBytes));
    EXPECT_EQ(std::memcmp(statusBytes, bytes, 48), 0);
    EXPECT_EQ(std::memcmp(statusBytes + 112, bytes + 112, sizeof(statusBytes) - 112), 0);
}
