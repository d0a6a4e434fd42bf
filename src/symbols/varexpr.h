// Address expressions: a number, or a name with members, indexes and an offset.
#ifndef SYMBOLS_VAREXPR_H
#define SYMBOLS_VAREXPR_H

#include <cstdint>

#include "symbols/varnode.h"

// Address an expression denotes ("name", "name + 0x10", "name.member[2]", "0x1F00"), or
// 0xFFFFFFFF. A leading "&" and a station prefix ("3:") are taken off first. Text after
// a blank that is no offset is ignored; an offset that is no number gives 0xFFFFFFFF.
// For aVarTMSNode the result is a word address, as the mailbox to that processor takes it:
// offsets count words, and members lie as the TMS320 lays them out.
uint32_t inStruct(const char *expression, const VarNode *table, int count);

#endif
