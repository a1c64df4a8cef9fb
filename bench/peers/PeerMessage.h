// The command that the peers of the command channel carry: its number and 16 bytes of payload.
#pragma once

#include <cstdint>
#include <cstring>

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
// none, until then; the number of messages that arrived as sent.
template <class Receive>
int countReceived(const PeerMessage& sent, Receive receive) {
    char buffer[256];
    int count = 0;
    for (long length = 0; (length = receive(buffer, sizeof(buffer))) >= 0;) {
        count += sent.equals(buffer, static_cast<std::size_t>(length)) ? 1 : 0;
    }
    return count;
}

}  // namespace vantric_bench
