// Must not compile: the provider aligns a payload to 4 bytes only, and packing hides what the
// record needs.
#include "Vantric/ClientServer/SharedMemoryLayout.h"
#include "Vantric/ClientServer/SharedMemoryProvider.h"

using namespace com_qel::Orvane::Vantric::ClientServer;

struct alignas(8) Record {
    unsigned char bytes[8];
};

template class SharedMemoryLayout<Record, SharedMemoryProvider>;
