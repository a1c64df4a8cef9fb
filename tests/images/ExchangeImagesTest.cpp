#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

#include "tests/images/ExchangeImages.h"

namespace {

using namespace com_qel::Orvane::Vantric;
using namespace com_qel::Orvane::Vantric::ClientServer;
using namespace vantric_test;

constexpr uint32_t ringCapacity = 4096;

Bytes checkedIn(const std::string& name) {
    std::ifstream file(std::string(SOURCE_FOLDER "/tests/images/") + name + ".bin",
                       std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

// Creates the object that a checked-in image was taken of.
std::unique_ptr<RawSegment> restore(const std::string& name) {
    const Bytes image = checkedIn(name);
    auto segment = std::make_unique<RawSegment>(name.substr(0, name.find('.')), image.size());
    segment->write(0, image);
    return segment;
}

template <class Reader, class Record>
void expectRead(const std::string& image, const Record& expected) {
    const auto segment = restore(image);
    Reader reader;
    Record record;
    ASSERT_TRUE(reader.read(record));
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof(record)), 0);
}

class ExchangeImage : public testing::TestWithParam<Image> {};

TEST_P(ExchangeImage, isMadeByteForByte) {
    EXPECT_EQ(firstDifference(GetParam().make(), checkedIn(GetParam().name)), "");
}

INSTANTIATE_TEST_SUITE_P(OfEverySituation, ExchangeImage, testing::ValuesIn(images()),
                         [](const auto& image) {
                             std::string name = image.param.name;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

TEST(ExchangeImages, theStateIsUnderstood) {
    expectRead<SharedMemoryModemState>("ModemStateShm.published", imageState());
}

TEST(ExchangeImages, theExtendedStateIsUnderstood) {
    expectRead<SharedMemoryModemStateExtended>("ModemStateEx.published", imageExtendedState());
}

TEST(ExchangeImages, theListIsUnderstood) {
    expectRead<SharedMemoryWifiList>("ModemWifiList.published", imageWifiList());
}

TEST(ExchangeImages, theFramesOfEveryCommandAreUnderstood) {
    const auto segment = restore("ModemCommandsShm.frames");
    EXPECT_EQ(PublishedServer().takeFrames(), imageFrames());
}

class ExchangeImageWithOneFrame : public testing::TestWithParam<const char*> {};

TEST_P(ExchangeImageWithOneFrame, isUnderstoodAcrossTheEndOfTheRing) {
    const auto segment = restore(GetParam());
    const uint32_t expectedSize = std::string(GetParam()) == "ModemCommandsShm.full" ? 4088 : 20;
    SharedMemoryModemCommands consumer(true);
    Bytes payload(ringCapacity);
    uint32_t size = ringCapacity;
    uint32_t command = 0;
    ASSERT_TRUE(consumer.dequeue(command, payload.data(), &size));
    EXPECT_EQ(command, 0x80000007U);
    ASSERT_EQ(size, expectedSize);
    for (uint32_t index = 0; index < size; ++index) {
        ASSERT_EQ(payload[index], static_cast<unsigned char>(index)) << index;
    }
    EXPECT_FALSE(consumer.dequeue(command, payload.data(), &size));
}

INSTANTIATE_TEST_SUITE_P(OfBothRings, ExchangeImageWithOneFrame,
                         testing::Values("ModemCommandsShm.split", "ModemCommandsShm.full"),
                         [](const auto& ring) { return std::string(ring.param).substr(17); });

TEST(ExchangeImages, theFullRingTakesNoMore) {
    const auto segment = restore("ModemCommandsShm.full");
    const SharedMemoryModemCommands consumer(true);
    SharedMemoryModemCommands producer(false);
    const Bytes before = segment->bytes();
    producer.enqueue(5, nullptr, 0);
    EXPECT_EQ(segment->bytes(), before);
}

TEST(ExchangeImages, theAttachedRingCountsANewProducer) {
    const auto segment = restore("ModemCommandsShm.attached");
    const SharedMemoryModemCommands producer(false);
    EXPECT_EQ(attachCount("ModemCommandsShm"), 4U);
    EXPECT_EQ(attachedProducers(), 3U);
}

// The payload's own bytes are the header now, "t,se" the length: no ring can hold that much.
TEST(ExchangeImages, aLostHeaderIsFollowedByPayloadTakenForOne) {
    const auto segment = restore("ModemCommandsShm.header_lost");
    SharedMemoryModemCommands consumer(true);
    char buffer[ringCapacity];
    uint32_t size = sizeof(buffer);
    uint32_t command = 0;
    EXPECT_FALSE(consumer.dequeue(command, buffer, &size));
    EXPECT_EQ(segment->word(16), 16U) << "8 bytes of header, 8 of payload were taken";
}

}  // namespace
