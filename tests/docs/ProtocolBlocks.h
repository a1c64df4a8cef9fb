// The worked examples of the protocol's document, replayed against the real transport. The forms
// are described there, where the reader needs them.
//
// Each replay empties this process's private /dev/shm first and throws DocumentFault as soon as the
// transport does anything else than what stands in the block, or the block has an unknown form.
#pragma once

#include "tests/docs/Markdown.h"

namespace vantric_test {

void replayRing(const CodeBlock& block);
void replayRecord(const CodeBlock& block);
void replayCalls(const CodeBlock& block);
void replayLock(const CodeBlock& block);

}  // namespace vantric_test
