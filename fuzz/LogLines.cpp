// Log records of arbitrary texts, files, lines, levels and categories: formatting, dispatching and
// writing them does not crash.
//
// Input: switches (bits: 1 file and line shown, 2 colours, 4 no file), level (word), line (word),
// category (long word), file (run), number (long word), message (the rest).
#include <cstdlib>
#include <string>
#include <utility>

#include "CoreMisc/LogInterface/Logger.h"
#include "CoreMisc/src/VyLog.h"
#include "fuzz/Input.h"
#include "fuzz/Target.h"

namespace {

using com_qel::VyLog;
using namespace com_qel::Korvel::LogInterface;

// One file sink for all inputs, whose lines go nowhere.
bool addSink() {
    for (const auto& [name, text] : {std::pair("VRAX_LOG_LEVEL", "trace"),
                                     {"VRAX_LOG_TYPE", "text_file"},
                                     {"VRAX_LOG_ROOT", "/dev"},
                                     {"VRAX_LOG_NAME", "null"}}) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): this program has one thread
        setenv(name, text, 1);
    }
    VyLog::Init();
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static const bool hasSink = addSink();
    static_cast<void>(hasSink);
    vantric_fuzz::Input input(data, size);
    const unsigned int switches = input.byte();
    const uint32_t level = input.word();
    const auto line = static_cast<int>(input.word());
    const uint64_t category = input.longWord();
    const std::string file = input.text();
    const auto number = static_cast<int64_t>(input.longWord());
    const auto rest = input.bytes(size);
    const std::string message(rest.begin(), rest.end());

    VyLog::SetShowFileLine((switches & 1U) != 0);
    VyLog::SetColors((switches & 2U) != 0);
    const char* path = (switches & 4U) != 0 ? nullptr : file.c_str();
    VyLog(static_cast<VyLog::Level>(level), path, line, category).append(message).append(number);
    VyLog(static_cast<VyLog::Level>(level), path, line, category).stream() << message << number;
    Logger::Instance().Dispatch(static_cast<Severity>(level), message.c_str());
    return 0;
}
