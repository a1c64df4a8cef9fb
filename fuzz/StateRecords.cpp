// Clients of a server that publishes arbitrary bytes: no query or blocking call of either interface
// crashes, goes on without end or writes to the published records.
//
// Input: number of publications (byte), that many publications, then calls (kind, argument). Each
// sleep of a blocking call brings the next publication. A publication is, for each record: form
// (byte; bits: 1 any header, 2 any time stamp), version (word) and valid (byte) of any header,
// content (run, repeated until the record is full), then the fields that readPublication() sets.
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <ctime>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "Vantric/ModemClient.h"
#include "Vantric/ModemClientC.h"
#include "fuzz/Input.h"
#include "fuzz/Target.h"
#include "tests/support/DequeueOutputs.h"
#include "tests/support/RawSegment.h"
#include "tests/support/Timespec.h"

namespace {

using namespace com_qel::Orvane::Vantric;
using namespace vantric_fuzz;
using vantric_test::RawSegment;

constexpr std::size_t mostPublications = 4;
constexpr int mostCalls = 24;

template <class Record, class SetFields>
Bytes readSegment(Input& input, SetFields setFields) {
    const unsigned int form = input.byte();
    const bool hasAnyHeader = (form & 1U) != 0;
    Bytes bytes;
    vantric_test::appendWord(bytes, hasAnyHeader ? input.word() : 1);
    vantric_test::appendWord(bytes, hasAnyHeader ? input.byte() : 1);
    const Bytes content = vantric_test::repeated(input.run(), sizeof(Record));
    Record record;
    std::memcpy(&record, content.data(), sizeof(record));
    setFields(record, form);
    const auto* begin = reinterpret_cast<const unsigned char*>(&record);
    bytes.insert(bytes.end(), begin, begin + sizeof(record));
    return bytes;
}

using Publication = std::array<Bytes, 3>;

Publication readPublication(Input& input) {
    return {readSegment<ModemState>(input,
                                    [&input](ModemState& record, unsigned int form) {
                                        const auto now = static_cast<int32_t>(std::time(nullptr));
                                        record.timestamp =
                                            (form & 2U) != 0
                                                ? static_cast<int32_t>(input.word())
                                                : now - static_cast<int16_t>(input.half());
                                    }),
            readSegment<ModemStateExtended>(input,
                                            [&input](ModemStateExtended& record, unsigned int) {
                                                record.updateCounter = input.byte();
                                            }),
            readSegment<WifiInfosList>(input, [&input](WifiInfosList& record, unsigned int) {
                record.count = static_cast<int32_t>(input.word());
                record.updateCounter = input.byte();
            })};
}

// Both kinds of client, connected once, and the server's side of the records.
class Exchange {
  public:
    ModemClient client;
    ModemClientHandle handle = modemClientCreate();

    Exchange() { require(isConnected_, "clients connect"); }

    void begin(std::vector<Publication> publications) {
        publications_ = std::move(publications);
        publish(0);
    }

    // The last publication stays for ever.
    void goOn() {
        if (current_ + 1 < publications_.size()) {
            publish(current_ + 1);
        }
    }

    bool isUnchanged() const {
        for (std::size_t index = 0; index < objects_.size(); ++index) {
            const Bytes& published = publications_[current_][index];
            if (objects_[index].bytes(contentOffset, published.size()) != published) {
                return false;
            }
        }
        return true;
    }

  private:
    static constexpr std::size_t contentOffset = 4;  // after the count of attachments

    void publish(std::size_t publication) {
        current_ = publication;
        for (std::size_t index = 0; index < objects_.size(); ++index) {
            objects_[index].write(contentOffset, publications_[publication][index]);
        }
    }

    // Before the objects, which connecting creates.
    const bool isConnected_ = client.connect() && modemClientConnect(handle);
    std::array<RawSegment, 3> objects_ = {RawSegment("ModemStateShm"), RawSegment("ModemStateEx"),
                                          RawSegment("ModemWifiList")};
    std::vector<Publication> publications_;
    std::size_t current_ = 0;
};

Exchange& exchange() {
    static Exchange& instance = *new Exchange;
    return instance;
}

void callClient(unsigned int kind, unsigned int argument) {
    ModemClient& client = exchange().client;
    const ModemClientHandle handle = exchange().handle;
    const uint32_t timeout = argument % 3;
    int32_t type = 0;
    std::string text;
    ModemStatus status = {};
    uint32_t size = argument;
    std::vector<WifiInfo> list(size);
    std::vector<char> buffer(size);
    const std::function<void()> calls[] = {
        [&] { client.getConnectivityType(type); },
        [&] {
            client.getWifiSSID(text);
            client.getHostname(text);
            client.getWifiConnectionState(text);
        },
        [&] { client.getWifiPasswordAndEncryptionType(type, text); },
        [&] { client.getWifiAvailableListBlocking(list, timeout); },
        [&] { modemClientGetWifiAvailableListBlocking(handle, list.data(), &size, timeout); },
        [&] { client.getModemStatusBlocking(status, timeout); },
        [&] { modemClientGetModemStatusBlocking(handle, &status, timeout); },
        [&] { modemClientGetWifiSSID(handle, buffer.data(), &size); },
        [&] { modemClientForgetWifiBlocking(handle, timeout); },
        [&] { modemClientSetWifiConnectionBlocking(handle, "name", 2, "word", timeout); },
        [&] {
            modemClientSetWifiConnectionRadiusBlocking(handle, "name", 5, "user", "word", timeout);
        },
        [] { exchange().goOn(); },
    };
    calls[kind % std::size(calls)]();
}

// A steady clock that moves only when a call reads it or sleeps, so that waiting takes no time.
struct SimulatedTime {
    static constexpr int64_t durationOfARead = 20'000'000;
    static constexpr int mostEvents = 20'000;

    bool isRunning;
    int64_t now;  // nanoseconds
    int events;

    void pass(int64_t nanoseconds) {
        now += nanoseconds;
        require(++events < mostEvents, "a blocking call comes to an end");
    }
};

// Plain data: the clock is read before this program's statics are constructed.
SimulatedTime simulatedTime;

}  // namespace

// Both come before the C library's own for the whole program.

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (!simulatedTime.isRunning || clock != CLOCK_MONOTONIC) {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    }
    simulatedTime.pass(SimulatedTime::durationOfARead);
    *time = vantric_test::timespecOf(simulatedTime.now);
    return 0;
}

extern "C" int nanosleep(const timespec* duration, timespec* rest) {
    if (!simulatedTime.isRunning) {
        return static_cast<int>(syscall(SYS_nanosleep, duration, rest));
    }
    simulatedTime.pass(vantric_test::nanosecondsOf(*duration));
    exchange().goOn();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    std::vector<Publication> publications;
    for (std::size_t left = 1 + input.byte() % mostPublications; left > 0; --left) {
        publications.push_back(readPublication(input));
    }
    exchange().begin(std::move(publications));
    simulatedTime = {true, 0, 0};
    for (int count = 0; !input.isEmpty() && count < mostCalls; ++count) {
        const unsigned int kind = input.byte();
        callClient(kind, input.byte());
        require(exchange().isUnchanged(), "clients only read");
    }
    simulatedTime.isRunning = false;
    return 0;
}
