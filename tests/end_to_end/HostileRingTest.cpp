// A command channel that is full or whose header cannot be true: requests get lost, nothing else.
#include <gtest/gtest.h>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSegment.h"

namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;
using vantric_test::alwaysFresh;
using vantric_test::Bytes;
using vantric_test::freshState;
using vantric_test::probe;
using vantric_test::PublishedServer;
using vantric_test::RawSegment;
using vantric_test::timingsBlock;
using vantric_test::transcript;

// Offsets in the object.
constexpr std::size_t readIndexOffset = 16;
constexpr std::size_t writeIndexOffset = 20;
constexpr std::size_t capacityOffset = 24;

constexpr bool asProducer = false;

std::string changingAtOnce() {
    return "Client successfully connected.\nCurrent connectivity is: Carrier\nNow changing to "
           "Wifi" +
           timingsBlock({"setConnectivityType: #us"});
}

// A server with a producer attached, so that the command under test does not set the ring up anew.
class UsedRing {
  public:
    UsedRing() { server.state.publish(freshState()); }

    PublishedServer server;
    SharedMemoryModemCommands producer{asProducer};
    RawSegment ring{"ModemCommandsShm"};
};

TEST(HostileRing, losesTheRequestWhenItIsFull) {
    UsedRing used;
    const std::string payload(1'016, 'x');
    for (int count = 0; count < 4; ++count) {
        used.producer.enqueue(12, payload.data(), static_cast<uint32_t>(payload.size()));
    }
    EXPECT_EQ(transcript(probe({"--enablewifi"})), changingAtOnce());
    const vantric_test::Frames frames = used.server.takeFrames();
    EXPECT_EQ(frames, vantric_test::Frames(4, {12, payload}));
}

TEST(HostileRing, isLeftAloneWhenItsHeaderCannotBeTrue) {
    struct Fault {
        std::size_t offset;
        uint32_t value;
    };
    for (const Fault fault :
         {Fault{capacityOffset, 0}, Fault{capacityOffset, 4'097}, Fault{capacityOffset, UINT32_MAX},
          Fault{writeIndexOffset, 4'096}, Fault{writeIndexOffset, UINT32_MAX},
          Fault{readIndexOffset, 4'096}, Fault{readIndexOffset, UINT32_MAX}}) {
        UsedRing used;
        used.ring.writeWord(fault.offset, fault.value);
        const Bytes before = used.ring.bytes(readIndexOffset, 4'128 - readIndexOffset);
        EXPECT_EQ(transcript(probe({"--enablewifi"})), changingAtOnce()) << fault.value;
        EXPECT_EQ(used.ring.bytes(readIndexOffset, before.size()), before) << fault.value;
    }
}

TEST(HostileRing, losesAPayloadThatNoRingCouldHold) {
    PublishedServer server;
    server.state.publish(alwaysFresh(freshState()));
    const std::string longName(4'089, 'n');
    transcript(probe({"--setConfig", longName}, 10));
    EXPECT_EQ(server.takeFrames(), vantric_test::Frames());
}

TEST(HostileRing, takesThePayloadThatJustFits) {
    PublishedServer server;
    server.state.publish(alwaysFresh(freshState()));
    const std::string longName(4'088, 'n');
    transcript(probe({"--setConfig", longName}, 10));
    EXPECT_EQ(server.takeFrames(), vantric_test::Frames({{9, longName}}));
}

}  // namespace
