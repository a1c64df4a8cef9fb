// The binary interface of the client class, as programs built against an earlier library use it:
// the order of its virtual table and its size.
#include <gtest/gtest.h>

#include <new>

#include "Vantric/ModemClient.h"
#include "tests/support/RawSegment.h"
#include "tests/support/VirtualSlot.h"

namespace {

using com_qel::Orvane::Vantric::ModemClient;
using namespace vantric_test;

}  // namespace

TEST(ModemClientAbi, keepsTheOrderOfTheVirtualTable) {
    EXPECT_EQ(virtualSlot(&ModemClient::connect), 2U);
    EXPECT_EQ(virtualSlot(&ModemClient::disconnect), 3U);
    EXPECT_EQ(virtualSlot(&ModemClient::getConnectivityType), 4U);
    EXPECT_EQ(virtualSlot(&ModemClient::setConnectivityType), 5U);
    EXPECT_EQ(virtualSlot(&ModemClient::getWifiSSID), 6U);
    EXPECT_EQ(virtualSlot(&ModemClient::setWifiSSID), 7U);
    EXPECT_EQ(virtualSlot(&ModemClient::getWifiAvailableListBlocking), 8U);
    EXPECT_EQ(virtualSlot(&ModemClient::getModemStatusBlocking), 9U);
    EXPECT_EQ(virtualSlot(&ModemClient::getWifiPasswordAndEncryptionType), 10U);
    EXPECT_EQ(virtualSlot(&ModemClient::setWifiPasswordAndEncryptionType), 11U);
    EXPECT_EQ(virtualSlot(&ModemClient::setWifiConnection), 12U);
    EXPECT_EQ(virtualSlot(&ModemClient::setWifiConnectionRadius), 13U);
    EXPECT_EQ(virtualSlot(&ModemClient::getHostname), 14U);
    EXPECT_EQ(virtualSlot(&ModemClient::setConfig), 15U);
    EXPECT_EQ(virtualSlot(&ModemClient::getWifiConnectionState), 16U);
    EXPECT_EQ(virtualSlot(&ModemClient::sendTextCommand), 17U);
    EXPECT_EQ(virtualSlot(&ModemClient::sendTextPairCommand), 18U);
}

TEST(ModemClientAbi, beginsTheVirtualTableWithTheDestructorThatKeepsTheMemory) {
    alignas(ModemClient) unsigned char memory[sizeof(ModemClient)];
    auto* client = new (memory) ModemClient;
    ASSERT_TRUE(client->connect());
    callVirtualSlot(client, 0);
    EXPECT_FALSE(segmentExists("ModemStateShm"));
}

TEST(ModemClientAbi, continuesTheVirtualTableWithTheDestructorThatFreesTheMemory) {
    auto* client = new ModemClient;
    ASSERT_TRUE(client->connect());
    callVirtualSlot(client, 1);
    EXPECT_FALSE(segmentExists("ModemStateShm"));
}

TEST(ModemClientAbi, keepsTheSizeOfOneTableAndOneRecordPointer) {
    EXPECT_EQ(sizeof(ModemClient), 2 * sizeof(void*));
}
