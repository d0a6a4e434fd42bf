// The watch list as the main panel shows it: lines without and with values, the tips
// that say why an item failed.
#ifndef WATCH_LIST_LIST_VIEW_H
#define WATCH_LIST_LIST_VIEW_H

#include <string>

struct LItem;

// One line with name, address, type and value; `processor` decides about word addresses.
std::string LSV_ValueLine(const LItem &item, int processor);

// Brings every line and tip of the list up to date; touches only what differs.
void LSV_ShowValues();
// Every line without a value, after names were looked up again; selection and scroll stay.
void LSV_ShowAddresses();
void LSV_ShowNone(); // the single line of a program without a list

// Selected line (0 when none) and first visible one, both inside 0..lines - 1.
int LSV_Selected();
int LSV_FirstVisible();
void LSV_Select(int line); // clamped to the last line

#endif
