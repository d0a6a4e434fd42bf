// Reads the value of one watch item from the target. Answers carry neither address nor
// number, so a value is only shown once the line was proven to have been in step behind it:
// good reads wait in the item until RFR_ProveSweep. A failed read needs no proof.
#ifndef WATCH_LIST_READ_ITEM_H
#define WATCH_LIST_READ_ITEM_H

#include <cstdint>
#include <string>
#include <vector>

// Why an item without an address has failed.
constexpr char RFR_NOT_RESOLVED[] = "not resolved: no such name in the loaded maps";
constexpr char RFR_CANCELLED[] = "cancelled";

// Watch items by index in aLItems; implemented in watch/list/read_item.cpp.
int read166(int index, uint32_t *low, uint32_t *high); // 0, -1 no communication, -2 no address
int readTMS(int index, uint32_t *value); // 0, -1, -2 no address or the mailbox stays busy
// 0, held back until it is proven; -1 C166 failed, -2 TMS320 failed, -4 bad index: the item
// has failed, with its reason. Without an address it fails without a request being sent.
// RFR_BROKEN_OFF, the item as it was: the user wished to go no further.
constexpr int RFR_BROKEN_OFF = -5;
int readValues(int index);

// Items by index, from <= index < end, with those together that one request reads. Items that
// have no address or are behind a mailbox stand alone.
std::vector<std::vector<int>> RFR_PlanItemBlocks(int from, int end);
// readValues for a block of the plan: by one request, or one by one when that is refused. The
// first result that is not 0; what failed has its reason.
int RFR_ReadItemBlock(const std::vector<int> &indices);

// Proves everything that is held back and puts it into the items; reads again, a bounded
// number of times, what the line may have mixed up. What cannot be proven has failed. The
// indices of the items that failed by it; empty when all is good.
std::vector<int> RFR_ProveSweep();
// readValues with its proof: the item then shows what was read. Results of readValues.
int RFR_ReadItemNow(int index);
// `count` bytes of a station, proven. 0, or -1 with the reason in *cause.
int RFR_ReadItemBytes(int station, uint32_t address, uint32_t count, void *buffer,
                      std::string *cause);
// The same for words of the TMS320 behind a station, by word address. TMS_OK or
// the mailbox's code.
int RFR_ReadTmsWords(int station, uint32_t address, uint32_t count, uint32_t *words,
                     std::string *cause);
// Forgets what is held back: its link is closed.
void RFR_DropHeld();

// Reads every item once, proven, in view or not. `advance` (may be null) is told before each
// item and ends it by false. 0, or -1 when ended; items not read by then keep what they had.
int RFR_ReadAllItems(bool (*advance)(int index));

#endif
