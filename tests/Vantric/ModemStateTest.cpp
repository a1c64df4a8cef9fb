#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "Vantric/ModemState.h"
#include "tests/support/PublishedServer.h"

namespace {

using namespace com_qel::Orvane::Vantric;
using namespace vantric_test;

constexpr int32_t lowest = std::numeric_limits<int32_t>::min();
constexpr int32_t highest = std::numeric_limits<int32_t>::max();

template <class Type>
struct Named {
    Type type;
    int32_t value;
    const char* name;
};

template <class Type, std::size_t count>
void expectNames(std::string (*nameOf)(int32_t), const Named<Type> (&rows)[count]) {
    for (const auto& row : rows) {
        EXPECT_EQ(static_cast<int32_t>(row.type), row.value);
        EXPECT_EQ(nameOf(row.value), row.name);
    }
}

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
    const Named<ConnectivityType> rows[] = {{ConnectivityType::None, 0, "None"},
                                            {ConnectivityType::Wifi, 1, "Wifi"},
                                            {ConnectivityType::Carrier, 2, "Carrier"}};
    expectNames(connectivityTypeName, rows);
}

TEST(ModemState, namesEveryEncryption) {
    const Named<EncryptionType> rows[] = {
        {EncryptionType::None, 0, "None"},
        {EncryptionType::WpaPsk, 1, "WPA(PSK)"},
        {EncryptionType::Wpa2Psk, 2, "WPA2 (PSK)"},
        {EncryptionType::WpaWpa2Psk, 3, "WPA+WPA2 (PSK)"},
        {EncryptionType::WpaEnterprise, 4, "WPA Enterprise (RADIUS)"},
        {EncryptionType::Wpa2Enterprise, 5, "WPA2 Enterprise (RADIUS)"},
        {EncryptionType::WpaWpa2Enterprise, 6, "WPA+WPA2 Enterprise (RADIUS)"}};
    expectNames(encryptionTypeName, rows);
}

TEST(ModemState, callsEveryOtherValueUnknown) {
    for (const int32_t type : {3, -1, lowest, highest}) {
        EXPECT_EQ(connectivityTypeName(type), "Unknown connectivity") << type;
    }
    for (const int32_t type : {7, -1, lowest, highest}) {
        EXPECT_EQ(encryptionTypeName(type), "Unknown encryption type") << type;
    }
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
        char next[4];
    } const record = {{'a', 'b', 'c', 'd'}, {'e', 'f', 'g', '\0'}};
    EXPECT_EQ(fieldText(record.field), "abcd");
}

TEST(ModemState, buildsANetworkWithZeroBytesAfterItsTexts) {
    const WifiInfo info = makeWifiInfo(entryNamed("office", 6));
    EXPECT_STREQ(info.ssid, "office");
    EXPECT_EQ(info.encryptionType, 6);
    EXPECT_STREQ(info.encryptionName, "WPA+WPA2 Enterprise (RADIUS)");
    EXPECT_EQ(info.signalLevel, -50);
    EXPECT_TRUE(isZeroFrom(info.ssid, std::strlen("office")));
    EXPECT_TRUE(isZeroFrom(info.encryptionName, std::strlen("WPA+WPA2 Enterprise (RADIUS)")));
}

TEST(ModemState, buildsANetworkFromANameWithoutNulAndAnUnknownEncryption) {
    const std::string wholeField(33, 'n');
    const WifiInfo info = makeWifiInfo(entryNamed(wholeField, -4));
    EXPECT_EQ(info.ssid, wholeField);
    EXPECT_TRUE(isZeroFrom(info.ssid, wholeField.size()));
    EXPECT_EQ(info.encryptionType, -4);
    EXPECT_STREQ(info.encryptionName, "Unknown encryption type");
}

TEST(ModemState, buildsAStatusThatKeepsTheServersBytesAfterItsOwnEncryptionName) {
    ModemStateExtended state = someExtendedState(1);
    setText(state.wifiEncryptionName, std::string(64, 'x'));
    state.wifiEncryptionType = 2;
    const ModemStatus status = makeModemStatus(state);
    const std::string expected = std::string("WPA2 (PSK)") + '\0' + std::string(53, 'x');
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
