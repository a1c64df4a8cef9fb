#include "tests/docs/ProtocolDocument.h"

#include <algorithm>
#include <map>

#include "tests/docs/ProtocolBlocks.h"
#include "tests/docs/ProtocolTables.h"

namespace vantric_test {

namespace {

using Replay = void (*)(const CodeBlock&);

// By what stands behind the fence. Each kind must occur.
const std::map<std::string, Replay>& replays() {
    static const std::map<std::string, Replay> table = {{"ring", replayRing},
                                                        {"ring attached", replayRing},
                                                        {"record ModemStateShm", replayRecord},
                                                        {"record ModemStateEx", replayRecord},
                                                        {"record ModemWifiList", replayRecord},
                                                        {"calls", replayCalls},
                                                        {"lock", replayLock}};
    return table;
}

template <class Part, class IsWanted>
void requireOne(Faults& faults, const std::vector<Part>& parts, const std::string& name,
                IsWanted isWanted) {
    if (std::none_of(parts.begin(), parts.end(), isWanted)) {
        faults.push_back("there is no " + name);
    }
}

}  // namespace

void checkBlock(const CodeBlock& block) {
    const auto replay = replays().find(block.kind);
    if (replay == replays().end()) {
        throw DocumentFault(block.line, "a block of unknown kind: " + block.kind);
    }
    if (block.lines.empty()) {
        throw DocumentFault(block.line, "an empty block");
    }
    replay->second(block);
}

Faults tableFaults(const MarkdownDocument& document) {
    Faults faults;
    for (const DocumentTable& table : document.tables) {
        if (!table.comment.empty() || needsName(table)) {
            collect(faults, [&] { compareTable(table); });
        }
    }
    for (const std::string& name : tableNames()) {
        requireOne(faults, document.tables, name,
                   [&](const DocumentTable& table) { return table.comment == name; });
    }
    return faults;
}

Faults protocolFaults(const std::string& text) {
    Faults faults;
    collect(faults, [&] {
        const MarkdownDocument document = parseMarkdown(text);
        faults = tableFaults(document);
        for (const CodeBlock& block : document.blocks) {
            collect(faults, [&] { checkBlock(block); });
        }
        for (const auto& [kind, replay] : replays()) {
            requireOne(faults, document.blocks, kind,
                       [&kind = kind](const CodeBlock& block) { return block.kind == kind; });
        }
    });
    return faults;
}

}  // namespace vantric_test
