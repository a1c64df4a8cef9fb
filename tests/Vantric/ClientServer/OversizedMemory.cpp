// Must not compile: a provider counts the bytes of a payload in 32 bits.
#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"

template class com_qel::Orvane::Vantric::ClientServer::SharedMemoryCircularBuffer<unsigned char,
                                                                                  UINT32_MAX>;
