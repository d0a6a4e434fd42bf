// The editor of one parameter of the device configuration: everything the header says about
// it, what target and file hold, and a new value.
#ifndef SETS_EDITOR_H
#define SETS_EDITOR_H

#include <cstdint>

struct PST_Form;

// Whose form it edits, and what it asks of the window that shows the form.
struct CFE_Host {
    PST_Form *form = nullptr;
    void (*refresh)() = nullptr;             // a value has been typed here
    bool (*write)(uint32_t entry) = nullptr; // one value, with its question; whether it went well
};

void CFE_Open(const CFE_Host &host, int entry); // nothing for -1
void CFE_Refresh(); // what it shows has changed; follows the table's selection

int CFE_PanelCB(int panel, int event, int data);
int CFE_NewCB(int panel, int control, int event, int data);
int CFE_ButtonCB(int panel, int control, int event, int data);

#endif
