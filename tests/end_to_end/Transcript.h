// Comparing whole outputs of vantricprobe.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vantric_test {

// `output` with "#" for every number of a duration (us, ms, sec): those differ from run to run.
std::string masked(const std::string& output);

// The number that follows `label` the first time; a test failure and -1 when there is none.
int64_t numberAfter(const std::string& output, const std::string& label);

// The dots in the longest run of them.
std::size_t countDots(const std::string& output);

// How often `text` occurs.
std::size_t countOf(const std::string& output, const std::string& text);

std::string repeated(const std::string& text, std::size_t count);

}  // namespace vantric_test
