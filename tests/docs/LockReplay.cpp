#include <memory>
#include <regex>

#include "Vantric/Utils/MultiProcessLock.h"
#include "tests/docs/EmptySharedMemory.h"
#include "tests/docs/ProtocolBlocks.h"
#include "tests/support/RawSemaphore.h"

namespace vantric_test {

namespace {

using com_qel::Orvane::Vantric::ClientServer::MultiProcessLock;

constexpr const char* semaphore = "ModemStateShmLock";

}  // namespace

void replayLock(const CodeBlock& block) {
    static const std::regex form("(open|take|release): ([0-9])(?:  <- .*)?");
    emptySharedMemory();
    std::unique_ptr<MultiProcessLock> lock;
    for (const TextLine& line : block.lines) {
        std::smatch match;
        if (!std::regex_match(line.text, match, form)) {
            throw DocumentFault(line.number, "not a step with the semaphore's value: " + line.text);
        }
        const bool canTake = lock != nullptr && semaphoreValue(semaphore) > 0;
        if (match[1] == "open") {
            lock = std::make_unique<MultiProcessLock>(semaphore);
        } else if (lock == nullptr || (match[1] == "take" && !canTake)) {
            throw DocumentFault(line.number, "the step would wait for ever");
        } else if (match[1] == "take") {
            lock->lock();
        } else {
            lock->unlock();
        }
        const std::string value = std::to_string(semaphoreValue(semaphore));
        if (value != match[2]) {
            throw DocumentFault(line.number, "the value is " + value);
        }
    }
}

}  // namespace vantric_test
