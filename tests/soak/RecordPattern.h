// The records of the torn-read hunt: every byte of them follows from a sequence number.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Vantric/ModemState.h"
#include "tests/soak/Randomness.h"

namespace vantric_soak {

namespace Vantric = com_qel::Orvane::Vantric;

// The number as eight digits, again and again, in `length` characters.
inline std::string repeatedDigits(uint32_t sequence, std::size_t length) {
    char digits[9];
    std::snprintf(digits, sizeof(digits), "%08x", sequence);
    std::string text;
    while (text.size() < length) {
        text += digits;
    }
    return text.substr(0, length);
}

// The number that such a text starts with; of any other text some number that does not fit it.
inline uint32_t sequenceOf(const std::string& text) {
    return static_cast<uint32_t>(std::strtoul(text.substr(0, 8).c_str(), nullptr, 16));
}

template <std::size_t size>
void fillText(char (&field)[size], uint32_t sequence) {
    const std::string text = repeatedDigits(sequence, size - 1);
    std::memcpy(field, text.c_str(), size);
}

// A state that the getters accept: texts end with a NUL, and the time stamp lies in the future.
inline void fillRecord(Vantric::ModemState& state, uint32_t sequence) {
    state.timestamp = static_cast<int32_t>(0x7F000000U | (sequence & 0x00FFFFFFU));
    state.connectivityType = static_cast<int32_t>(sequence);
    state.wifiEncryptionType = static_cast<int32_t>(~sequence);
    fillText(state.wifiSsid, sequence);
    fillText(state.wifiPassword, sequence);
    fillText(state.hostname, sequence);
    fillText(state.wifiConnectionState, sequence);
}

inline uint32_t sequenceOf(const Vantric::ModemState& state) {
    return static_cast<uint32_t>(state.connectivityType);
}

// The number first, then bytes that follow from it.
template <class Record>
void fillRecord(Record& record, uint32_t sequence) {
    auto* bytes = reinterpret_cast<unsigned char*>(&record);
    std::memcpy(bytes, &sequence, sizeof(sequence));
    fillPattern(bytes + sizeof(sequence), sizeof(record) - sizeof(sequence), sequence);
}

template <class Record>
uint32_t sequenceOf(const Record& record) {
    uint32_t sequence = 0;
    std::memcpy(&sequence, &record, sizeof(sequence));
    return sequence;
}

// Whether the record is exactly the one of its sequence number.
template <class Record>
bool isWhole(const Record& record) {
    Record expected;
    fillRecord(expected, sequenceOf(record));
    return std::memcmp(&record, &expected, sizeof(record)) == 0;
}

}  // namespace vantric_soak
