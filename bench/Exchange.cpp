#include "bench/Exchange.h"

#include <stdexcept>

namespace vantric_bench {

Exchange::Exchange() {
    constexpr int32_t secondsOfADay = 86400;
    server.publishAt(vantric_test::secondsNow() + secondsOfADay);  // the future is never stale
    server.wifiList.publish(vantric_test::wifiListOf({3, 1, 4, 1, 5, 9, 2, 6, 5, 3}, 1));
    if (!client.connect()) {
        throw std::runtime_error("the client cannot connect");
    }
}

int Exchange::takeAll(uint32_t command, const std::string& payload) {
    const vantric_test::Frames frames = server.takeFrames();
    for (const vantric_test::Frame& frame : frames) {
        if (frame.command != command || frame.payload != payload) {
            throw std::runtime_error("the channel holds a frame that was not sent");
        }
    }
    return static_cast<int>(frames.size());
}

Exchange& exchange() {
    static Exchange instance;
    return instance;
}

}  // namespace vantric_bench
