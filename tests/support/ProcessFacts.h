// What the kernel tells about a process or a thread.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>

#include "tests/support/Polling.h"

namespace vantric_test {

inline std::string fileContent(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Whether a thread (a process stands for its main thread) sleeps until something wakes it.
inline bool isSleeping(pid_t id) {
    const std::string status = fileContent("/proc/" + std::to_string(id) + "/stat");
    const std::size_t nameEnd = status.rfind(')');
    return nameEnd != std::string::npos && status.compare(nameEnd, 3, ") S") == 0;
}

// Waits until a thread sleeps and stays so for a while, as one does that waits for a lock.
template <class Ended>
bool eventuallyBlocks(pid_t id, Ended hasEnded) {
    constexpr int sightings = 10;
    int seen = 0;
    eventually([&] {
        seen = isSleeping(id) ? seen + 1 : 0;
        return seen == sightings || hasEnded();
    });
    return seen == sightings && !hasEnded();
}

inline std::size_t openDescriptorCount() {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                      std::filesystem::directory_iterator()));
}

// Where this process maps the object in /dev/shm with that inode number first; null when it does
// not. (A name would not do: a semaphore is created under another one, which its mapping goes on
// showing.)
inline void* mappingOf(ino_t inode) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        std::istringstream fields(line);
        std::string addresses, rights, offset, device, path;
        ino_t mappedInode = 0;
        fields >> addresses >> rights >> offset >> device >> mappedInode >> path;
        if (mappedInode == inode && path.rfind("/dev/shm/", 0) == 0) {
            void* begin = nullptr;
            std::istringstream(addresses) >> begin;
            return begin;
        }
    }
    return nullptr;
}

inline bool isMapped(ino_t inode) {
    return mappingOf(inode) != nullptr;
}

// An action in a thread of its own, meant to block.
class BackgroundAction {
  public:
    explicit BackgroundAction(std::function<void()> action) {
        std::promise<pid_t> id;
        std::future<pid_t> idArrived = id.get_future();
        std::promise<void> ended;
        ended_ = ended.get_future();
        thread_ = std::thread(
            [action = std::move(action), id = std::move(id), ended = std::move(ended)]() mutable {
                id.set_value(gettid());
                action();
                ended.set_value();
            });
        id_ = idArrived.get();
    }

    // Waits for the end.
    ~BackgroundAction() { thread_.join(); }
    BackgroundAction& operator=(BackgroundAction&&) = delete;

    // False when the action ends instead.
    bool blocks() const {
        return eventuallyBlocks(id_, [this] { return ends(std::chrono::milliseconds(0)); });
    }

    bool ends(std::chrono::milliseconds patience = std::chrono::seconds(20)) const {
        return ended_.wait_for(patience) == std::future_status::ready;
    }

  private:
    pid_t id_ = -1;
    std::future<void> ended_;
    std::thread thread_;
};

}  // namespace vantric_test
