// Lines of bytes in a document, each behind the decimal offset of its first byte:
//
//     20  08 00 00 00        writeIndex 8
//     38  61 * 4000          4000 bytes "a"
//
// and the pieces of text that stand for bytes.
#pragma once

#include <cstddef>
#include <string>

#include "tests/docs/Markdown.h"
#include "tests/support/RawSegment.h"

namespace vantric_test {

struct ByteLine {
    std::size_t offset;
    Bytes bytes;
    std::string note;  // what stands behind the bytes and two or more blanks
};

// Byte lines are indented.
bool isByteLine(const TextLine& line);

// Throws DocumentFault for another form.
ByteLine parseByteLine(const TextLine& line);

// Writes the line's bytes into an image. Throws DocumentFault when they are not inside.
void overlay(Bytes& image, const ByteLine& line, int number);

// A payload: "text", or N bytes "a" for that many equal ones. Throws std::runtime_error otherwise.
std::string payloadOf(const std::string& text);

// Throws DocumentFault with the bytes as they are, when they are not as expected.
void requireEqual(const Bytes& actual, const Bytes& expected, int line);

}  // namespace vantric_test
