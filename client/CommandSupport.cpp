#include "client/CommandSupport.h"

#include <thread>

namespace vantricprobe {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds pollInterval = 3s;
constexpr std::chrono::seconds changeLimit = 300s;
constexpr const char* changeLimitText = "5";  // minutes

}  // namespace

void sleepFor(std::chrono::seconds duration) {
    std::this_thread::sleep_for(duration);
}

void connectWithRetry(ModemClient& client) {
    while (!client.connect()) {
        writeLine("Client failed to connect, retrying in 1 second.");
        sleepFor(1s);
    }
    writeLine("Client successfully connected.");
}

void readWithRetry(const std::function<bool()>& read, const char* failureText) {
    while (!read()) {
        writeLine(failureText);
        sleepFor(pollInterval);
    }
}

WallClock::duration waitForChange(const AwaitedChange& change) {
    const WallClock::time_point start = WallClock::now();
    bool isReached = false;
    while (!isReached) {
        if (change.read()) {
            isReached = change.reached();
        } else {
            writeLine(change.readFailureText);
        }
        // The limit comes first: a change that is seen too late is still a timeout.
        if (WallClock::now() - start > changeLimit) {
            writeLine(change.timeoutText, " in the allocated time of: ", changeLimitText,
                      " minutes.");
            break;
        }
        write(".");
        sleepFor(pollInterval);
    }
    return WallClock::now() - start;
}

void writeTimings(std::initializer_list<Timing> timings) {
    write("\n---------------------------------\nTimings:\n");
    for (const Timing& timing : timings) {
        write(timing.label);
        write(timing.value);
        write(timing.unit);
        write("\n");
    }
    endLine();
}

}  // namespace vantricprobe
