// How old the values of the watch list are, in sweeps and in runs of communication. A value
// is old, and shown as such, when more than RFR_AGE_SWEEPS_MAX sweeps have gone by without
// another read of it, when communication was off since, or when it came from another station
// than the one selected now.
#ifndef WATCH_LIST_AGE_H
#define WATCH_LIST_AGE_H

#include <string>

struct LItem;

constexpr int RFR_AGE_SWEEPS_MAX = 3;

void RFR_EndAgeSweep(); // every line in view has been read once more
void RFR_EndAgeRun();   // communication was switched off, or comes from elsewhere: all is old now
// Marks the item's value as read in this sweep of this run, now, from `station`.
void RFR_StampAge(LItem *item, int station);

bool RFR_IsOld(const LItem &item);          // it has a good value, but an old one
std::string RFR_AgeText(const LItem &item); // "40 s", "3 min", "2 h": rounded down
std::string RFR_AgeTip(const LItem &item);  // a sentence; "" for a value that is not old

#endif
