// Communication on and off: opens and closes the link as the settings say, with the timer
// that reads the watch list. Whoever shows the state or keeps counts of a run is told
// through COM_Listener, which the start-up sets; any room from here up may call.
#ifndef COMM_COMMUNICATION_H
#define COMM_COMMUNICATION_H

#include <string>

// What communication tells those above it. Each entry may be null.
struct COM_Listener {
    void (*opening)();                                // the link is about to be opened anew
    void (*stateChanged)();                           // on or off, port open or closed
    void (*showMessage)(const std::string &text);     // for the main window's message area
    void (*withdrawMessage)(const std::string &text); // no news any more, if still shown
};
void COM_SetListener(const COM_Listener &listener);
void COM_TellState(); // calls stateChanged: the port was closed behind communication's back

// Why nothing was read or written when the user did not want communication on.
constexpr char COM_OFF_TEXT[] = "communication is off.";

void Error(const std::string &message); // communication off, then a pop-up "Error"
void VR_ComRequest();                   // when it is off, asks whether to switch it on
bool VR_EnsureCom();                    // the same; whether communication is on then
void VIR2_StartPeriodicASC();
void VIR2_StopPeriodicASC();
// Reports a link that could not be opened with Error. Returns the result.
int Check_ASC_Open(int result);
// Opens the link as the settings say, without a word to the user. 0 or negative.
int VR_OpenLink();
// Takes an unplugged port again once it is back, and says both in the message area.
void VR_FollowPort();
void VR_AutoOff(const std::string &why); // communication off after failed reads, and says so
void VIR2_SetStation(int station);
// After a change of port, baud rate or the like: opens the link anew if communication is on.
void VR_Reopen();

// "waiting for station 9", for whoever watches a program that waits on the line.
std::string COM_WaitingText(int station);

#endif
