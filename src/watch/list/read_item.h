// Reads the value of one watch item from the target.
#ifndef WATCH_LIST_READ_ITEM_H
#define WATCH_LIST_READ_ITEM_H

#include <cstdint>

// Watch items by index in aLItems; implemented in watch/list/read_item.cpp.
int read166(int index, uint32_t *low, uint32_t *high); // 0, -1 no communication, -2 no address
int readTMS(int index, uint32_t *value); // 0, -1, -2 no address or the mailbox stays busy
// Fills the item, its reason included; 0, -1 C166 failed, -2 TMS320 failed, -4 bad index.
// An item without an address fails without a request being sent.
int readValues(int index);

#endif
