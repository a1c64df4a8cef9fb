#include "Vantric/Utils/ImmortalKeeper.h"

#include <exception>
#include <mutex>
#include <vector>

namespace com_qel::Orvane::Vantric {

namespace {

struct Keeper {
    std::mutex mutex;
    std::vector<const void*> objects;
};

}  // namespace

void keepUntilProcessEnds(const void* object) noexcept {
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
