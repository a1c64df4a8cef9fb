#include "ctl/Inspection.h"

#include "Vantric/Utils/Waiting.h"
#include "ctl/Wait.h"

namespace vantricctl {

namespace {

constexpr int readings = 10;  // a poll interval apart

struct KnownObject {
    const char* name;
    std::size_t size;
};

constexpr KnownObject knownObjects[] = {
    {objectName<ModemState>, objectSize<ModemState>},
    {objectName<ModemStateExtended>, objectSize<ModemStateExtended>},
    {objectName<WifiInfosList>, objectSize<WifiInfosList>},
    {ringName, ringObjectSize}};

bool isHeld(const SharedFile& file) {
    const auto word = decodeSemaphore(file);
    return word && word->value == 0;
}

}  // namespace

uint32_t ObservedObject::attachCount() const {
    uint32_t count = 0;
    file.copyTo(&count, 0, sizeof(count));
    return count;
}

uint32_t ObservedObject::mappings() const {
    uint32_t count = 0;
    for (const Mapper& mapper : mappers) {
        count += mapper.mappings;
    }
    return count;
}

Inspection inspectExchange() {
    Inspection result = {};
    const uint32_t firstReadIndex =
        decodeRing(readConsistently(ringName, ringObjectSize)).memory.readIndex;
    for (const KnownObject& object : knownObjects) {
        for (const char* suffix : {"Lock", "ProviderLock"}) {
            result.semaphores.push_back(
                {readSemaphoreFile(object.name + std::string(suffix)), true});
        }
    }
    result.isRingLeftAlone = true;
    for (int reading = 0; reading < readings; ++reading) {
        com_qel::Orvane::Vantric::sleepForPollInterval();
        checkSignals();
        for (ObservedSemaphore& semaphore : result.semaphores) {
            semaphore.file = readSemaphoreFile(semaphore.file.name);
            semaphore.isHeldThroughout = semaphore.isHeldThroughout && isHeld(semaphore.file);
        }
        const Ring ring = decodeRing(readSharedFile(ringName, ringObjectSize));
        result.isRingLeftAlone = result.isRingLeftAlone && ring.memory.readIndex == firstReadIndex;
    }
    for (const KnownObject& object : knownObjects) {
        const SharedFile file = readConsistently(object.name, object.size);
        result.objects.push_back({file, object.size, mappersOf(file)});
    }
    result.state = judge<ModemState>(result.objects[0].file);
    result.extended = judge<ModemStateExtended>(result.objects[1].file);
    result.networks = judge<WifiInfosList>(result.objects[2].file);
    result.ring = decodeRing(result.objects[3].file);
    return result;
}

}  // namespace vantricctl
