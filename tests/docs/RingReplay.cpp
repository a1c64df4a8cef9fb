#include <memory>
#include <regex>
#include <stdexcept>
#include <utility>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "tests/docs/EmptySharedMemory.h"
#include "tests/docs/ProtocolBlocks.h"
#include "tests/docs/RingNotes.h"

namespace vantric_test {

namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;
using Members = std::vector<std::unique_ptr<SharedMemoryModemCommands>>;

constexpr const char* objectName = "ModemCommandsShm";
constexpr std::size_t objectSize = 4128;
constexpr std::size_t ringSize = 4096;

constexpr const char* attachedKind = "ring attached";

class RingReplay {
  public:
    // One consumer, then one producer.
    void attachBoth() {
        consumers_.push_back(std::make_unique<SharedMemoryModemCommands>(true));
        producers_.push_back(std::make_unique<SharedMemoryModemCommands>(false));
        hasObject_ = true;
        expected_ = RawSegment(objectName).bytes();
    }

    void perform(const TextLine& line) {
        for (const auto& [form, action] : operations()) {
            std::smatch match;
            if (std::regex_match(line.text, match, form)) {
                (this->*action)(match);
                return;
            }
        }
        throw std::runtime_error("no such operation: " + line.text);
    }

    void expect(const TextLine& line) {
        if (!hasObject_) {
            throw std::runtime_error("there is no object now");
        }
        const ByteLine bytes = parseByteLine(line);
        notes_.read(bytes);
        overlay(expected_, bytes, line.number);
    }

    // What the operation's lines say is then complete.
    void compare(int line) const {
        notes_.requireEnd();
        if (hasObject_) {
            requireEqual(RawSegment(objectName).bytes(), expected_, line);
        } else if (segmentExists(objectName)) {
            throw std::runtime_error("the object is still there");
        }
    }

  private:
    using Action = void (RingReplay::*)(const std::smatch&);

    static const std::vector<std::pair<std::regex, Action>>& operations() {
        static const std::vector<std::pair<std::regex, Action>> table = {
            {std::regex("attach (producer|consumer)"), &RingReplay::attach},
            {std::regex("detach (producer|consumer)(: the object is removed)?"),
             &RingReplay::detach},
            {std::regex("enqueue ([0-9]+)(?: (.*\"))?(: dropped)?"), &RingReplay::enqueue},
            {std::regex("dequeue(?: into ([0-9]+) bytes)?: (nothing|([0-9]+)(?: (.*\"))?)"),
             &RingReplay::dequeue}};
        return table;
    }

    Members& members(const std::string& role) {
        return role == "producer" ? producers_ : consumers_;
    }

    // The last that came.
    static SharedMemoryModemCommands& last(const Members& members) {
        if (members.empty()) {
            throw std::runtime_error("nobody is attached");
        }
        return *members.back();
    }

    void attach(const std::smatch& match) {
        members(match[1]).push_back(
            std::make_unique<SharedMemoryModemCommands>(match[1] == "consumer"));
        hasObject_ = true;
    }

    void detach(const std::smatch& match) {
        last(members(match[1]));
        members(match[1]).pop_back();
        hasObject_ = !match[2].matched;
        if (!hasObject_) {
            expected_ = Bytes(objectSize);
        }
    }

    // "dropped" is for the reader and shows in the bytes; the transport says nothing.
    void enqueue(const std::smatch& match) {
        const std::string payload = match[2].matched ? payloadOf(match[2]) : "";
        const Bytes before = RawSegment(objectName).bytes();
        const bool result = last(producers_)
                                .enqueue(static_cast<uint32_t>(std::stoul(match[1])),
                                         payload.data(), static_cast<uint32_t>(payload.size()));
        const bool isDropped = RawSegment(objectName).bytes() == before;
        if (!result || isDropped != match[3].matched) {
            throw std::runtime_error(isDropped ? "the frame is dropped"
                                               : "the frame is not dropped");
        }
    }

    void dequeue(const std::smatch& match) {
        std::string buffer(match[1].matched ? std::stoul(match[1]) : ringSize, '\0');
        auto size = static_cast<uint32_t>(buffer.size());
        uint32_t command = 0;
        std::string result = "nothing";
        if (last(consumers_).dequeue(command, buffer.data(), &size)) {
            const bool hasPayload = size != buffer.size();
            buffer.resize(hasPayload ? size : 0);
            result = std::to_string(command);
        }
        const std::string promised = match[3].matched ? match[3] : match[2];
        const std::string payload = match[4].matched ? payloadOf(match[4]) : "";
        if (result != promised || (result != "nothing" && buffer != payload)) {
            throw std::runtime_error("dequeue gives " + result + " \"" + buffer + "\"");
        }
    }

    RingNotes notes_;
    Members producers_;
    Members consumers_;
    bool hasObject_ = false;
    Bytes expected_ = Bytes(objectSize);
};

}  // namespace

void replayRing(const CodeBlock& block) {
    emptySharedMemory();
    RingReplay replay;
    if (block.kind == attachedKind) {
        replay.attachBoth();
    }
    for (std::size_t index = 0; index < block.lines.size(); ++index) {
        const TextLine& line = block.lines[index];
        const bool isLastOfStep =
            index + 1 == block.lines.size() || !isByteLine(block.lines[index + 1]);
        try {
            if (isByteLine(line)) {
                replay.expect(line);
            } else if (!line.text.empty()) {
                replay.perform(line);
            }
            if (isLastOfStep) {
                replay.compare(line.number);
            }
        } catch (const DocumentFault&) {
            throw;
        } catch (const std::exception& error) {
            throw DocumentFault(line.number, error.what());
        }
    }
}

}  // namespace vantric_test
