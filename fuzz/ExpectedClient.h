// What a client has to answer while a broadcast goes on: the rules of its queries, played through.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/Broadcast.h"

namespace vantric_fuzz {

// An empty answer is a failure. The blocking queries let the broadcast go on with each sleep; their
// timeouts must be 0 or long enough for it to come to its end.
class ExpectedClient {
  public:
    // `broadcast` must outlive this.
    explicit ExpectedClient(Broadcast& broadcast) : broadcast_(broadcast) {}

    std::optional<int32_t> connectivityType();
    std::optional<std::string> text(std::size_t offset, std::size_t size);  // of the basic state
    std::optional<Bytes> status(uint32_t timeoutSeconds);

    // The clients' records of the networks, strongest first.
    std::optional<std::vector<Bytes>> networks(uint32_t timeoutSeconds);

    struct Encryption {
        int32_t type;
        std::string password;
    };
    std::optional<Encryption> encryption();

    bool forget(uint32_t timeoutSeconds);
    bool setConnection(uint32_t timeoutSeconds);

  private:
    // Whether a failed read has been reported, by segment.
    struct Reports {
        bool state = false;
        bool extended = false;
        bool list = false;
    };

    std::optional<Bytes> read(const PublishedSegment& segment, bool Reports::*report);
    std::optional<Bytes> readState();
    std::optional<Bytes> refresh(PublishedSegment Publication::*segment, bool Reports::*report,
                                 std::size_t counter, uint32_t timeoutSeconds);

    Broadcast& broadcast_;
    Reports reports_;
};

}  // namespace vantric_fuzz
