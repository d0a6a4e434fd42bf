// The array inspector: an array of the target as a table and as a curve, with one or two
// dimensions. The table reads only the lines in view; curve, copy and files read all of it
// with the array commands' own transfers. Stands on the console's commands.
#ifndef INSPECT_ARRAY_INSPECTOR_H
#define INSPECT_ARRAY_INSPECTOR_H

#include <cstdint>
#include <string>

struct ArrayType;

struct ARI_Array {
    std::string place; // as typed
    uint32_t address = 0;
    const ArrayType *type = nullptr; // null: nothing is shown
    uint32_t rows = 0, columns = 1;
};

// "awTable" with the type map's dimensions, or "place, type, rows[, columns]" with a type of
// the array commands. 0, or -1 with the reason.
int ARI_Parse(const std::string &text, ARI_Array *array, std::string *cause);

void ARI_Open(const std::string &text); // "" = what was shown last
// Maps or types may have changed: an array that moved or changed with them is shown anew.
void ARI_NamesChanged();
void ARI_OpenCB(int menuBar, int item); // on the selected watch item
int ARI_PanelCB(int panel, int event, int data);
int ARI_PlaceCB(int panel, int control, int event, int data);
int ARI_ListCB(int panel, int control, int event, int data);
int ARI_ButtonCB(int panel, int control, int event, int data);
int ARI_TimerCB(int panel, int control, int event, int data);

#endif
