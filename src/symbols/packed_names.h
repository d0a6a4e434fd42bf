// Names as the target's flash stores them: six bits a character, leading characters
// shared with the name before. Sources come from a target: every call takes the number of
// bytes there are and never reads behind them.
#ifndef SYMBOLS_PACKED_NAMES_H
#define SYMBOLS_PACKED_NAMES_H

#include <cstddef>
#include <cstdint>
#include <string>

// How a name is stored. "Shared": a first byte with bit 7 set says how many characters
// are taken from the name before.
enum { NAME_PLAIN = 0, NAME_SHARED = 1, NAME_SHARED_6BIT = 2 };

char Decode6b(unsigned code); // 0 for the end code 0 and for anything above 63

// The results below are the number of bytes the name takes in the source, or -1 when the
// source ends before the name does.
int DecodeStr6b(std::string *destination, const uint8_t *packed, size_t size);
// `destination` holds the name before on entry.
int UnpackVarName(std::string *destination, const uint8_t *source, size_t size, int form);

#endif
