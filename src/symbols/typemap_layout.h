// Shared by the type map's own files: how members follow one another.
#ifndef SYMBOLS_TYPEMAP_LAYOUT_H
#define SYMBOLS_TYPEMAP_LAYOUT_H

#include <cstdint>
#include <vector>

#include "symbols/typemap.h"

inline bool TMF_IsRecord(uint32_t code) // structure or union
{
    const uint32_t derivation = code & TMF_DERIVATION;
    return derivation == TMF_UNION || derivation == TMF_STRUCT;
}

// Where a member goes that would start at `offset`. The padding is the offset modulo the
// alignment: exact for alignments of 1 and 2, and for 4 at even offsets.
int64_t TMF_PlaceMember(int64_t offset, int32_t alignment);
// Byte offsets of all members of a structure or union; false when it does not resolve.
bool TMF_MemberOffsets(uint32_t code, std::vector<uint32_t> *offsets);
// The tables have changed: sizes computed from them are forgotten.
void TMF_ForgetLayouts();
// The same for the name index.
void TMF_ForgetNames();

#endif
