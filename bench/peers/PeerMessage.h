// The command that the peers of the command channel carry: 16 bytes of payload behind its number.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

namespace vantric_bench {

struct PeerMessage {
    uint32_t command = 12;
    char payload[16] = {'s', 'i', 'x', 't', 'e', 'e', 'n', ' ', 'b', 'y', 't', 'e', 's'};

    bool equals(const void* bytes, std::size_t size) const {
        return size == sizeof(*this) && std::memcmp(this, bytes, size) == 0;
    }
};
static_assert(sizeof(PeerMessage) == 20);

// Calls `receive(buffer, size)`, which returns the length of a message or less than 0 when there is
// none, until then; the number of messages that are as sent.
template <class Receive>
int countReceived(const PeerMessage& sent, Receive receive) {
    char buffer[256];
    int count = 0;
    while (true) {
        const auto length = receive(buffer, sizeof(buffer));
        if (length < 0) {
            return count;
        }
        count += sent.equals(buffer, static_cast<std::size_t>(length)) ? 1 : 0;
    }
}

}  // namespace vantric_bench
