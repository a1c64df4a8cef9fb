/// \file
/// Keeps abandoned objects reachable until the process ends.
///
/// Some contracts forbid releasing an object (its mappings and locks must stay open) after the last
/// pointer to it is gone. keepUntilProcessEnds() distinguishes such an object from a leak, for the
/// reader and for leak checkers.
#pragma once

#include <exception>
#include <mutex>
#include <vector>

namespace com_qel::Orvane::Vantric {

/// Remembers `object`, which is never released; null is ignored. Safe from any thread, but not in
/// the child of a process with several threads: a thread that was in this function at the fork
/// leaves the mutex locked for good. When memory runs out, the object is not remembered.
inline void keepUntilProcessEnds(const void* object) noexcept {
    struct Keeper {
        std::mutex mutex;
        std::vector<const void*> objects;
    };
    if (object == nullptr) {
        return;
    }
    try {
        static Keeper& keeper = *new Keeper;
        const std::lock_guard<std::mutex> guard(keeper.mutex);
        keeper.objects.push_back(object);
    } catch (const std::exception&) {
        return;
    }
}

}  // namespace com_qel::Orvane::Vantric
