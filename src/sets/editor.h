// The editor of one parameter of the device configuration: everything the header says about
// it, what target and file hold, and a new value.
#ifndef SETS_EDITOR_H
#define SETS_EDITOR_H

#include <cstdint>

struct PST_Form;

// Whose form it edits, and what it asks of the window that shows the form.
struct CFW_EditorHost {
    PST_Form *form = nullptr;
    void (*refresh)() = nullptr;             // a value has been typed here
    bool (*write)(uint32_t entry) = nullptr; // one value, with its question; whether it went well
};

void CFW_OpenEditor(const CFW_EditorHost &host, int entry); // nothing for -1
void CFW_RefreshEditor(); // what it shows has changed; follows the table's selection

int CFW_EditorNewCB(int panel, int control, int event, int data);
int CFW_EditorButtonCB(int panel, int control, int event, int data);

#endif
