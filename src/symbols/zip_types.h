// Compressed type declarations, and the type map text that is rebuilt from them. A
// declaration is a name in plain text followed by type codes: a byte with bit 7 set (bits
// 24 to 30 of the code) and one to six base-64 digits (the bits below), up to its NUL.
#ifndef SYMBOLS_ZIP_TYPES_H
#define SYMBOLS_ZIP_TYPES_H

#include <cstdint>
#include <string>

// Up to six digits of "A".."Z", "a".."z", "0".."9", "+", "/" at the cursor, most
// significant first; the cursor is moved behind them. -1 when none stands there.
int Base64ToUint32(const char **cursor, uint32_t *value);

// Appends the type codes as "_@0x%lX" each, the name in front of them left out. 0, or -1:
// no code, or something that is none.
int DecodeZipDecl(std::string *destination, const char *source);
// Appends "'name' " and the type codes. 0 or -1.
int DecodeZipVar(std::string *destination, const char *source);

// The following work on whole texts by their handles, append to `output` and answer the
// number of variables or structures, or -1.

// A line "index:'name' codes" for each variable whose declaration is not empty; line n of
// the declarations belongs to line n of the variable map ("HEX name").
int DecodeZipVars(int output, int declarations, int variableMap);
// Structures: a line "#m", then m compressed declarations.
int DecodeZipStructFrw(int output, int structures);
// The whole type map, ready for TMF_LoadMapFrw; `output` is empty on entry. 0 or -1.
int UnzipTMF(int output, int structures, int declarations, int variableMap);

#endif
