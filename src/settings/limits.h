// What every target has in common: its stations, its addresses, the command that writes.
#ifndef SETTINGS_LIMITS_H
#define SETTINGS_LIMITS_H

#include <cstdint>

constexpr uint32_t ADDR_LIMIT = 0x1000000u; // valid byte addresses are below
constexpr int STATION_MAX = 15;             // last station of mr166, and that a prefix can select
constexpr int MODBUS_STATION_MIN = 1, MODBUS_STATION_MAX = 250; // slave addresses
constexpr int TARGET_WRITE = 8; // command of a message that writes memory

#endif
