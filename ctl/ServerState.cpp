#include "ctl/ServerState.h"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <system_error>
#include <thread>

namespace vantricctl {

namespace {

constexpr uint32_t rightVersion = 1;
constexpr uint8_t validMark = 1;
constexpr int64_t stalenessLimitSeconds = 300;

constexpr int mostReads = 100;
constexpr std::chrono::milliseconds readInterval(1);

struct ConditionRow {
    const char* name;
    ExitStatus status;  // of a command that needs the object
};

// In the order of the conditions.
constexpr ConditionRow conditions[] = {
    {"published", statusDone},           {"stale", statusUnusableState},
    {"invalid", statusNoServer},         {"other version", statusUnusableState},
    {"wrong size", statusUnusableState}, {"unreadable", statusFailed},
    {"absent", statusNoServer}};

bool isLockFree(const std::string& object) {
    const auto word = decodeSemaphore(readSemaphoreFile(object + "Lock"));
    return !word || word->value != 0;
}

std::string sentenceOf(const Judgement& judgement, const SharedFile& file, std::size_t rightSize) {
    switch (judgement.condition) {
        case Condition::Absent:
            return "No server publishes: there is no object " + file.name + ".";
        case Condition::Invalid:
            return "No server publishes: " + file.name + " holds no valid record.";
        case Condition::Unreadable:
            return unreadableSentence(file);
        case Condition::WrongSize:
            return wrongSizeSentence(file, rightSize);
        case Condition::OtherVersion:
            return file.name + " is of another version: its layout is " +
                   std::to_string(judgement.version) + " instead of " +
                   std::to_string(rightVersion) + ".";
        default:
            return "The state is stale: it is " + std::to_string(judgement.ageSeconds) + " s old.";
    }
}

}  // namespace

const char* conditionName(Condition condition) {
    return conditions[static_cast<std::size_t>(condition)].name;
}

SharedFile readConsistently(const std::string& name, std::size_t size) {
    SharedFile copy;
    for (int read = 0; read < mostReads; ++read) {
        const bool wasFree = isLockFree(name);
        copy = readSharedFile(name, size);
        if (copy.error != 0) {
            return copy;
        }
        const bool isUnchanged =
            isLockFree(name) && readSharedFile(name, size).bytes == copy.bytes && isLockFree(name);
        if (wasFree && isUnchanged) {
            return copy;
        }
        std::this_thread::sleep_for(readInterval);
    }
    return copy;
}

Judgement judgeHeader(const SharedFile& file, std::size_t rightSize, uint32_t version,
                      uint8_t valid) {
    Judgement result;
    result.version = version;
    result.valid = valid;
    if (file.error != 0) {
        const bool isAbsent = !file.exists() && file.error == ENOENT;
        result.condition = isAbsent ? Condition::Absent : Condition::Unreadable;
    } else if (!file.hasSize(rightSize)) {
        result.condition = Condition::WrongSize;
    } else if (version != rightVersion && (version != 0 || valid != 0)) {
        result.condition = Condition::OtherVersion;
    } else {
        result.condition = valid == validMark ? Condition::Published : Condition::Invalid;
    }
    return result;
}

void judgeAge(Judgement& judgement, int64_t timestamp) {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    judgement.ageSeconds = now.tv_sec - timestamp;
    if (judgement.isPublished() && judgement.ageSeconds > stalenessLimitSeconds) {
        judgement.condition = Condition::Stale;
    }
}

Failure failureOf(const Judgement& judgement, const SharedFile& file, std::size_t rightSize) {
    return {conditions[static_cast<std::size_t>(judgement.condition)].status,
            sentenceOf(judgement, file, rightSize)};
}

}  // namespace vantricctl
