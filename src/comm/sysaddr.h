// Target memory by address text: numbers, variable names and station prefixes to
// addresses; near pointers through the data page pointers; single values on the
// C166 and, through the mailbox, on a TMS320 behind it.
//
// An address text is "$1F00", "0x1F00", "name" (a symbol of the loaded map or a
// register, with member, index and offset) or "&name" (a TMS320 symbol), each with an
// optional station prefix "3:". Blanks in front are skipped.
#ifndef COMM_SYSADDR_H
#define COMM_SYSADDR_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "settings/limits.h"

constexpr uint32_t ADDR_NONE = 0xFFFFFFFFu;

// Where names come from: the address of a name, or ADDR_NONE. With isTMS the name is one of
// the TMS320 behind the station. Without a resolver no name has an address.
typedef uint32_t (*COM_NameResolver)(const char *name, bool isTMS);
void COM_SetNameResolver(COM_NameResolver resolver);

// Station number, the cursor moved past the colon; -1, cursor unchanged, without a prefix.
// A colon without digits is station 0; the number is not checked against STATION_MAX.
int GetStationModifier(const char **cursor);
// What to tell a user about a text that is no place: "'x' is no address, ..." and "Stations
// are 0 to 15."; and what a field for one wants.
std::string COM_UnknownNameText(const std::string &what);
std::string COM_UnknownStationText();
constexpr char COM_ADDRESS_HINT[] =
    "A name from the map, or an address such as $1F00; 3: in front for station 3.";
uint32_t GetSysAddrWk(const char *text);              // without station prefix; ADDR_NONE
uint32_t GetSysAddr(const char *text);                // a station prefix is discarded
uint32_t GetSysAddrM(const char *text, int *station); // station: its number or -1
uint32_t GetAltSysAddr(const char *list);             // the first of "a,b,c" that resolves
uint32_t GetAltSysAddrM(const char *list, int *station);

extern uint16_t awQRDPP[4]; // DPP0..DPP3 as last read
int UpdateQuickDPP();       // 0, or -1 (unknown or unreadable; awQRDPP as it was)
uint32_t QuickNearToHuge(uint16_t nearPointer);
// What the near pointer there designates, or ADDR_NONE. The page pointers are those of
// the last UpdateQuickDPP: the caller refreshes them first.
uint32_t QuickRefNearPtr(uint32_t address);
uint32_t QuickRefNearPtrVar(const char *name);

// One read or write of `size` bytes (target byte order) at a variable's address, always
// on STATION: a station prefix of the name is ignored. -1 when the name does not
// resolve, else the result of UCM_Read or UCM_Write.
int ReadSysVar(const char *name, void *buffer, uint32_t size);
int WriteSysVar(const char *name, const void *data, uint32_t size);
// The same where the near pointer held by that variable points to.
int ReadQuickSysNRef(const char *name, void *buffer, uint32_t size);
int WriteQuickSysNRef(const char *name, const void *data, uint32_t size);

#endif
