// Log settings from arbitrary environment texts: reading them and configuring the logger with them
// neither crashes nor yields a level or a type outside its range.
//
// Input: default level and type (words), default size (word), default root and name (runs), which
// variables are set (bits, in the order level, type, root, name, size), then their texts (runs).
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "CoreMisc/LogInterface/LogConfig.h"
#include "CoreMisc/LogInterface/Logger.h"
#include "fuzz/Input.h"
#include "fuzz/Target.h"

namespace {

using namespace com_qel::Korvel::LogInterface;
using namespace vantric_fuzz;

constexpr uint32_t levelCount = 6;
constexpr uint32_t typeCount = 5;

// Replaces the environment's table: setenv() would keep every text it was ever given.
void setEnvironment(std::vector<std::string> settings) {
    static std::vector<std::string>& texts = *new std::vector<std::string>;
    static std::vector<char*>& table = *new std::vector<char*>;
    texts = std::move(settings);
    table.clear();
    for (std::string& text : texts) {
        table.push_back(text.data());
    }
    table.push_back(nullptr);
    environ = table.data();
}

std::vector<std::string> readSettings(Input& input) {
    std::vector<std::string> settings;
    const unsigned int set = input.byte();
    unsigned int bit = 1;
    for (const char* name : {"LEVEL", "TYPE", "ROOT", "NAME", "SIZE"}) {
        if ((set & bit) != 0) {
            settings.push_back(std::string("VRAX_LOG_") + name + "=" + input.text());
        }
        bit *= 2;
    }
    return settings;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    const uint32_t level = input.word();
    const uint32_t type = input.word();
    const uint32_t fileSize = input.word();
    const std::string root = input.text();
    const std::string name = input.text();
    std::vector<std::string> settings = readSettings(input);
    setEnvironment(settings);
    const LogConfig config(level, type, root, name, fileSize);
    require(config.level < levelCount || config.level == level, "a level is known or the default");
    require(config.type < typeCount || config.type == type, "a type is known or the default");
    // The first entry of a name counts: the type that opens nothing and adds no sink.
    settings.insert(settings.begin(), "VRAX_LOG_TYPE=inmemory");
    setEnvironment(settings);
    Logger::Instance().ConfigureFromEnvironment(name, FormatLine);
    require(Logger::Instance().Threshold() < levelCount, "the threshold is a known level");
    return 0;
}
