// A simulated target that this program runs for the user: the program vireo2-target beside it,
// reached through the network of this machine. Owns that program, and while communication goes
// to it the settings of before, which come back afterwards. For the simulator window, and for
// whoever wants to say that what is seen is simulated.
#ifndef SIMULATOR_TARGET_H
#define SIMULATOR_TARGET_H

#include <cstdint>
#include <deque>
#include <string>

enum TGT_Program { TGT_DEMO, TGT_EMPTY, TGT_LOADER };

struct TGT_Options {
    TGT_Program program = TGT_DEMO;
    bool isModbus = false;
    int baud = 0;         // 0 = as fast as the machine
    std::string stations; // "0,2,5-7"; "" = all
    std::string scopes = "2,3,3c166";
};

// Starts it, in place of one that runs. `notify` may be called on any thread: its log has
// grown, or it has ended. 0, or -1 with the reason.
int TGT_Start(const TGT_Options &options, void (*notify)(), std::string *cause);
void TGT_Stop();              // disconnects first
bool TGT_IsStarted();         // until TGT_Stop, also when it has ended by itself
bool TGT_HasEnded();          // by itself
std::string TGT_GetAddress(); // "tcp:127.0.0.1:40123"; "" when none is started
// One of the faults that vireo2-target takes while it runs, by its name there. 0 or -1.
int TGT_SetFault(const std::string &name, const std::string &value);
// Moves what it has logged or complained about since to the end of *lines.
void TGT_TakeLog(std::deque<std::string> *lines);

// Settings of the link lead to it, and communication goes on; a loader gets the settings only.
// 0, or -1 with the reason.
int TGT_Connect(std::string *cause);
// The settings of before. Communication stays off: nothing that was meant for a simulated
// target shall reach a real one.
void TGT_Disconnect();
bool TGT_IsConnected(); // settings of the link lead to it

#endif
