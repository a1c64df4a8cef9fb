// Keeps objects that are abandoned on purpose reachable until the process ends.
//
// Some contracts forbid releasing an object (its mappings and locks must stay open) while nobody
// needs a pointer to it any more. Handing it in here tells such an object from a leak, for the
// reader and for leak checkers.
#pragma once

namespace com_qel::Orvane::Vantric {

// Remembers `object`, which nobody will release; null is ignored. Safe from any thread. When memory
// runs out the object is merely not remembered.
void keepUntilProcessEnds(const void* object) noexcept;

}  // namespace com_qel::Orvane::Vantric
