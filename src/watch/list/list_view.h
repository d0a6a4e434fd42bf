// The watch list as the main panel shows it: a line of text and the cells of a table for each
// item, with how far its value can be trusted, and the tips that say why not.
#ifndef WATCH_LIST_LIST_VIEW_H
#define WATCH_LIST_LIST_VIEW_H

#include <string>
#include <vector>

struct LItem;

constexpr int SWEEP_LINES = 13; // lines in view while the window has not said how many

// Cells of a line, in order.
enum LSV_Column { LSV_NAME, LSV_ADDRESS, LSV_TYPE, LSV_VALUE, LSV_AGE, LSV_COMMENT };
constexpr int LSV_COLUMNS = LSV_COMMENT + 1;

// One line with name, address, type and value; `processor` decides about word addresses.
std::string LSV_ValueLine(const LItem &item, int processor);
// Style of the item's value (UI_CellStyle): red after a failed read, dim when old; struck
// through where the number was not read at all.
unsigned LSV_ValueStyle(const LItem &item);

// Brings every line and tip of the list up to date; touches only what differs.
void LSV_ShowValues();
void LSV_ShowLine(int index); // the same for one line
// Every line without a value, after names were looked up again; selection and scroll stay.
void LSV_ShowAddresses();
void LSV_ShowNone(); // the single line of a program without a list

// Selected line (0 when none) and first visible one, both inside 0..lines - 1.
int LSV_Selected();
int LSV_FirstVisible();
int LSV_LinesInView();
void LSV_Select(int line); // clamped to the last line
// Every selected line by rising index, at least LSV_Selected(); empty for an empty list.
std::vector<int> LSV_SelectedLines();
void LSV_SelectLines(const std::vector<int> &lines); // the first one gets the keyboard

void VR_FillDebugItems(); // only once a debug file has been loaded
void ResetLItemsDisplay();

#endif
