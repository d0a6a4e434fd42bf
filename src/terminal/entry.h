// The entry panel of the service terminal: a longer text, pasted or from a file, that is seen
// before it goes to the target, then its progress, and a way to stop it.
#ifndef TERMINAL_ENTRY_H
#define TERMINAL_ENTRY_H

#include <cstddef>
#include <string>

// Who sends. `send` takes UTF-8 with line feeds and answers "" or why nothing was sent.
struct TRM_EntryHost {
    std::string (*send)(const std::string &text) = nullptr;
    size_t (*waiting)() = nullptr; // bytes not sent yet
    size_t (*cancel)() = nullptr;  // forgets them: how many
};
void TRM_SetEntryHost(const TRM_EntryHost &host);
void TRM_OpenEntryWithClipboard();
void TRM_ShowEntryProgress();          // something has been sent
void TRM_BreakEntry(size_t forgotten); // the rest cannot be sent any more

int TRM_EntryPanelCB(int panel, int event, int data);
int TRM_EntryButtonCB(int panel, int control, int event, int data);

#endif
