#include "tests/soak/StormServer.h"

#include <sched.h>

#include <cstring>
#include <string>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "tests/soak/RecordPattern.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/SemaphoreCalls.h"

namespace vantric_soak {

namespace {

using Vantric::ClientServer::ModemCommand;
using Vantric::ClientServer::SharedMemoryModemCommands;
using vantric_test::SemaphoreMoment;

constexpr uint32_t bufferSize = 4096;  // no payload is as large
constexpr const char* markerStart = "marker ";

struct StateSegments {
    Vantric::ClientServer::SharedMemoryModemState state;
    Vantric::ClientServer::SharedMemoryModemStateExtended extended;
    Vantric::ClientServer::SharedMemoryWifiList list;

    void publish(uint32_t sequence) {
        Vantric::ModemState stateRecord;
        Vantric::ModemStateExtended extendedRecord;
        Vantric::WifiInfosList listRecord;
        fillRecord(stateRecord, sequence);
        fillRecord(extendedRecord, sequence);
        fillRecord(listRecord, sequence);
        state.publish(stateRecord);
        extended.publish(extendedRecord);
        list.publish(listRecord);
    }
};

void receive(ServerArea& area, uint32_t command, const std::string& payload) {
    ++area.frames;
    const auto known = static_cast<ModemCommand>(command);
    if (known == ModemCommand::SendText && payload.rfind(markerStart, 0) == 0) {
        area.lastMarker =
            static_cast<uint32_t>(std::stoul(payload.substr(std::strlen(markerStart))));
    } else if (!(known == ModemCommand::SwitchToWifi && payload.empty()) &&
               !(known == ModemCommand::SetWifiSsid && payload == "storm")) {
        ++area.foreignFrames;
    }
}

void drain(ServerArea& area, SharedMemoryModemCommands& commands, std::vector<char>& buffer) {
    uint32_t command = 0;
    uint32_t size = bufferSize;
    while (commands.dequeue(command, buffer.data(), &size)) {
        receive(area, command, {buffer.data(), size == bufferSize ? 0 : size});
        size = bufferSize;
    }
}

}  // namespace

std::string markerText(uint32_t number) {
    return markerStart + std::to_string(number);
}

void runStormServer(ServerArea& area) {
    StateSegments segments;
    SharedMemoryModemCommands commands(true);
    std::vector<char> buffer(bufferSize);
    segments.publish(++area.sequence);
    vantric_test::observeSemaphoreCalls([&](SemaphoreMoment moment, const sem_t*) {
        area.isWaiting = moment == SemaphoreMoment::AboutToWait;
    });
    area.isAttached = true;
    while (!area.isOver) {
        const uint32_t request = area.request;
        area.answered = request;
        if (request % 2 == 1) {
            sched_yield();
            continue;
        }
        segments.publish(++area.sequence);
        drain(area, commands, buffer);
    }
    vantric_test::observeSemaphoreCalls(nullptr);
}

void letGoOn(ServerArea& area) {
    area.request += area.request % 2;
}

bool holdUp(ServerArea& area, pid_t server, Supervision& supervision) {
    area.request += (area.request + 1) % 2;
    bool isStuck = false;
    supervision.awaitSoon(
        [&] {
            // Nothing but the wait for a lock makes it sleep.
            isStuck = area.isWaiting && vantric_test::isSleeping(server);
            return area.answered == area.request || isStuck;
        },
        "the server to come to rest");
    return !isStuck;
}

}  // namespace vantric_soak
