#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "Vantric/ModemState.h"
#include "sim/RecordFields.h"

namespace {

using com_qel::Orvane::Vantric::fieldText;
using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ModemStateExtended;
using com_qel::Orvane::Vantric::WifiListEntry;
using namespace vantric_sim;

// Fills every field with a value of its own and checks that the record shows nothing else.
std::vector<FieldChange> changesOfAll(const RecordFields& fields) {
    std::vector<FieldChange> changes;
    for (const RecordField& field : fields) {
        if (field.kind == RecordField::Kind::Integer) {
            changes.push_back({&field, static_cast<int32_t>(100 + changes.size())});
        } else {
            changes.push_back({&field, std::string(field.key)});
        }
    }
    return changes;
}

TEST(RecordFields, reachEveryFieldOfTheBasicStateButItsTimeStamp) {
    ModemState state = {};
    applyChanges(&state, changesOfAll(stateFields()));
    EXPECT_EQ(int32_t(state.timestamp), 0);
    EXPECT_EQ(int32_t(state.connectivityType), 100);
    EXPECT_EQ(fieldText(state.wifiSsid), "wifiSsid");
    EXPECT_EQ(fieldText(state.wifiPassword), "wifiPassword");
    EXPECT_EQ(int32_t(state.wifiEncryptionType), 103);
    EXPECT_EQ(fieldText(state.hostname), "hostname");
    EXPECT_EQ(fieldText(state.wifiConnectionState), "wifiConnectionState");
}

TEST(RecordFields, reachEveryFieldOfTheExtendedState) {
    ModemStateExtended extended = {};
    applyChanges(&extended, changesOfAll(extendedFields()));
    EXPECT_EQ(int32_t(extended.serverWord), 100);
    EXPECT_EQ(int32_t(extended.carrierSignalLevel), 101);
    EXPECT_EQ(fieldText(extended.wifiSsid), "wifiSsid");
    EXPECT_EQ(int32_t(extended.wifiEncryptionType), 103);
    EXPECT_EQ(fieldText(extended.wifiEncryptionName), "wifiEncryptionName");
    EXPECT_EQ(int32_t(extended.wifiSignalLevel), 105);
    EXPECT_EQ(fieldText(extended.ipv4Address), "ipv4Address");
    EXPECT_EQ(fieldText(extended.macAddress), "macAddress");
    EXPECT_EQ(int32_t(extended.updateCounter), 108);
}

TEST(RecordFields, reachEveryFieldOfANetwork) {
    WifiListEntry entry = {};
    applyChanges(&entry, changesOfAll(networkFields()));
    EXPECT_EQ(fieldText(entry.ssid), "ssid");
    EXPECT_EQ(int32_t(entry.encryptionType), 101);
    EXPECT_EQ(int32_t(entry.signalLevel), 102);
}

TEST(RecordFields, cutATextSoThatANulStaysInsideItsField) {
    struct {
        char field[8];
        char behind;
    } record = {{}, 'x'};
    setText(record.field, "12345678");
    EXPECT_STREQ(record.field, "1234567");
    setText(record.field, "1234567");
    EXPECT_STREQ(record.field, "1234567");
    EXPECT_EQ(record.behind, 'x');
}

TEST(RecordFields, leaveNothingOfAnOlderTextBehindAShorterOne) {
    char field[8];
    setText(field, "longest");
    setText(field, "a");
    EXPECT_EQ(std::memcmp(field, "a\0\0\0\0\0\0\0", sizeof(field)), 0);
}

}  // namespace
