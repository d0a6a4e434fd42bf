// Names to addresses for the address texts that people type, and back for listings. Looks
// into every table of nodes that is open.
#ifndef SYMBOLS_ADDR_NAME_H
#define SYMBOLS_ADDR_NAME_H

#include <cstdint>
#include <string>

// Address of a name in the tables that are open: the map, then the registers; with isTMS
// the TMS320 behind the station. ADDR_NONE of comm/sysaddr.h when no table knows it.
uint32_t SYM_ResolveName(const char *name, bool isTMS);
// Register "NAME", or "NAME+1" for the high byte of a word register. 0, or -1 and "".
int RegAddrToName(uint32_t address, std::string *text);
// "name" or "name+n" for an address in or shortly behind a variable, "0<hex>h (==name+n)"
// further behind it. 0, or -1 and "" when no variable lies at or below the address.
int VarAddrToName(uint32_t address, std::string *text);
// What a person would call the place: a register, a member or a variable, with "+n" for a
// place inside or shortly behind it; "" for none.
std::string SYM_AddressToName(uint32_t address);
// Name of the nearest node at or after *address (registers and the map, members when a
// type map is loaded) and its address; 0, or -1 with "" and 0xFFFFFFFF.
int MapAddrToId(std::string *name, uint32_t *address);

#endif
