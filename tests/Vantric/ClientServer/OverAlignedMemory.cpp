// Must not compile: the provider aligns a payload to 4 bytes only.
#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryCircularBuffer;

struct alignas(8) Element {
    unsigned char bytes[8];
};

template class SharedMemoryCircularBuffer<Element, 4>;
