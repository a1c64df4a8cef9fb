#include "ctl/Inspection.h"

#include <sys/sysmacros.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "ctl/Wait.h"

namespace vantricctl {

namespace {

constexpr int readings = 10;  // a poll interval apart

constexpr SharedObject sharedObjects[] = {objectOf<ModemState>, objectOf<ModemStateExtended>,
                                          objectOf<WifiInfosList>, objectOf<RingMemory>};

// "7f.. rw-s 00000000 00:1a 12 /dev/shm/NAME" maps the file of that device and number.
bool isMappingOf(const std::string& line, const SharedFile& file) {
    std::istringstream fields(line);
    std::string field;
    unsigned int deviceMajor = 0;
    unsigned int deviceMinor = 0;
    uint64_t inode = 0;
    fields >> field >> field >> field >> std::hex >> deviceMajor;
    fields.ignore();
    fields >> deviceMinor >> std::dec >> inode;
    return inode == file.inode && makedev(deviceMajor, deviceMinor) == file.device;
}

// The processes that map the file. `seesAll` becomes false when there is one into which this user
// may not look.
std::vector<Mapper> mappersOf(const SharedFile& file, bool& seesAll) {
    std::vector<Mapper> mappers;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos) {
            continue;
        }
        Mapper mapper = {std::stoi(name), "", 0};
        std::ifstream maps(entry.path() / "maps");
        for (std::string line; std::getline(maps, line);) {
            mapper.mappings += isMappingOf(line, file) ? 1 : 0;
        }
        // A process that has ended meanwhile has no folder any more.
        seesAll = seesAll && (maps.is_open() || !std::filesystem::exists(entry.path(), error));
        if (mapper.mappings != 0) {
            std::getline(std::ifstream(entry.path() / "comm"), mapper.program);
            mappers.push_back(mapper);
        }
    }
    return mappers;
}

}  // namespace

Inspection inspectExchange() {
    Inspection result = {};
    const uint32_t firstReadIndex = readRing().memory.readIndex;
    for (const SharedObject& object : sharedObjects) {
        for (const char* suffix : {"Lock", "ProviderLock"}) {
            result.semaphores.push_back({readSemaphore(object.name + std::string(suffix)), true});
        }
    }
    for (int reading = 0; reading < readings; ++reading) {
        com_qel::Orvane::Vantric::sleepForPollInterval();
        checkSignals();
        for (ObservedSemaphore& semaphore : result.semaphores) {
            const Semaphore now = readSemaphore(semaphore.file.name);
            semaphore = {now, semaphore.isHeldThroughout && now.isHeld()};
        }
    }
    result.seesAllProcesses = true;
    for (const SharedObject& object : sharedObjects) {
        const ObjectCopy copy = copyOf(object);
        ObservedObject observed = {copy, copy.file.at<uint32_t>(0), 0, {}};
        observed.mappers = mappersOf(copy.file, result.seesAllProcesses);
        for (const Mapper& mapper : observed.mappers) {
            observed.mappings += mapper.mappings;
        }
        result.objects.push_back(observed);
    }
    result.state = recordIn<ModemState>(result.objects[0]);
    result.extended = recordIn<ModemStateExtended>(result.objects[1]);
    result.networks = recordIn<WifiInfosList>(result.objects[2]);
    result.ring.memory = recordIn<RingMemory>(result.objects[3]);
    result.isRingLeftAlone = result.ring.memory.readIndex == firstReadIndex;
    return result;
}

}  // namespace vantricctl
