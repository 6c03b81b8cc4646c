// What the fuzz targets share: a quiet, self-contained environment for the
// library, the box vocabulary, and the decoding of fuzzer bytes into a box map.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/collections.h"
#include "platform/cstring.h"

namespace ct600fuzz {

// Once per process: temporary and template folders (unless the environment
// already names them), today's date fixed, messages and log lines dropped.
void PrepareEnvironment();

// Box keys the library knows: the message template's placeholders, the keys
// in the calculators' sources and the words of the box map that are not
// boxes. Row keys keep their "%d" (or the template's "#") for the row number.
const std::vector<std::string>& BoxVocabulary();

// A box map from fuzzer bytes. The bytes are records separated by line feeds:
//
//   Q155=185000            a literal record: key, "=", value (no "=": empty value)
//   <byte 0x00..0x1F>...   a generated record: the low two bits of the first
//                          byte choose how the key is made, the next three bits
//                          the kind of value; the bytes after it feed both
//
// Keys come from the vocabulary (plain, as a row with a number, with bytes
// around them) or are arbitrary bytes. Values are numbers in many spellings,
// dates in both forms (valid or not), the words the forms use ("zero", ticks),
// overflows and special numbers, long texts, raw bytes, and overrides ending
// in "!". A record whose key is "#prefix" gives the run's prefix instead.
struct DecodedBoxes {
    CMapStringToString boxes;
    CString prefix;
};
DecodedBoxes DecodeBoxMap(const std::uint8_t* data, std::size_t size);

// Aborts with the message (a finding for the fuzzer) when the condition fails.
void Require(bool condition, const char* what);

}  // namespace ct600fuzz
