// The check value of archive members and of anything else that uses a reflected CRC-32
// shift without the usual inversions.
#ifndef CALENDAR_CRC32_H
#define CALENDAR_CRC32_H

#include <cstddef>
#include <cstdint>

constexpr uint32_t CRC32_POLYNOMIAL = 0xEDB88320;

// Reflected shift register started from 0 and not inverted at the end; 0 for no data.
// Tables are kept for the polynomial last used, so changing it on every call is slow.
uint32_t Crc32_LSB(const void *data, size_t length, uint32_t polynomial);
// The same going on from the value of the bytes before.
uint32_t Crc32_LSBNext(uint32_t value, const void *data, size_t length, uint32_t polynomial);

#endif
