// Target memory by address text: numbers, variable names and station prefixes to
// addresses; near pointers through the data page pointers; single values on the
// C166 and, through the mailbox, on a TMS320 behind it.
#ifndef COMM_SYSADDR_H
#define COMM_SYSADDR_H

#include <cstddef>
#include <cstdint>
#include <string>

constexpr uint32_t ADDR_NONE = 0xFFFFFFFFu;
constexpr uint32_t ADDR_LIMIT = 0x1000000u; // valid byte addresses are below

// Station number, the cursor moved past the colon; -1, cursor unchanged, without a prefix.
int GetStationModifier(const char **cursor);
uint32_t GetSysAddrWk(const char *text);              // without station prefix; ADDR_NONE
uint32_t GetSysAddr(const char *text);                // a station prefix is discarded
uint32_t GetSysAddrM(const char *text, int *station); // station: its number or -1
uint32_t GetAltSysAddr(const char *list);             // the first of "a,b,c" that resolves
uint32_t GetAltSysAddrM(const char *list, int *station);

extern uint16_t awQRDPP[4]; // DPP0..DPP3 as last read
int UpdateQuickDPP();       // 0, or -1
uint32_t QuickNearToHuge(uint16_t nearPointer);
uint32_t QuickRefNearPtr(uint32_t address); // what the near pointer there designates, or ADDR_NONE
uint32_t QuickRefNearPtrVar(const char *name);

int ReadSysVar(const char *name, void *buffer, uint32_t size);
int WriteSysVar(const char *name, const void *data, uint32_t size);
int ReadQuickSysNRef(const char *name, void *buffer, uint32_t size);
int WriteQuickSysNRef(const char *name, const void *data, uint32_t size);

// Watch items by index in aLItems.
int read166(int index, uint32_t *low, uint32_t *high); // 0, -1 no communication, -2 no address
int readTMS(int index, uint32_t *value);               // 0, -1, -2
int readValues(int index); // fills the item; 0, -1 C166 failed, -2 TMS320 failed, -4 bad index

int IsWordAddressing(int processor); // 1 for the TMS320 family

int RegAddrToName(uint32_t address, std::string *text); // 0, or -1
int VarAddrToName(uint32_t address, std::string *text); // 0, or -1

#endif
