// The windows that pick what to watch: the variable selector (a searchable list of the
// map's variables, the registers and the variables of a TMS320 behind the station) and
// the structure selector (members and elements, level by level). They own nothing but
// what they show, and add to the watch list through watch/list/edit.h.
#ifndef WATCH_WINDOWS_SELECTORS_H
#define WATCH_WINDOWS_SELECTORS_H

#include <string>

// Values of the variable selector's source ring.
enum VSL_Source { VSL_MAP = 0, VSL_REGISTERS = 1, VSL_TMS = 2 };

// Whether a filter lets a name through, in either case of letters: the filter is part of
// the name, or, with a "*" (any run of characters) in it, matches all of it.
bool VSL_IsMatch(const std::string &filter, const std::string &name);

// Maps, types or the processor have changed: windows that are open show it at once.
void VSL_SymbolsChanged();

// Opens the structure selector on an expression; "" lists every variable with parts. 0, or
// -1: the expression names nothing that has parts (said in the window, which then shows
// what it showed before).
int TMF_DisplayStructSelector(const std::string &expression);
// Builds the window's list anew from the tables as they are.
void TMF_CreateStructSelector();

// Menu, panel and control callbacks.
void VSL_OpenCB(int menuBar, int item);
int VSL_FilterCB(int panel, int control, int event, int data);
int VSL_ListCB(int panel, int control, int event, int data);
int VSL_SourceCB(int panel, int control, int event, int data);
int VSL_ButtonCB(int panel, int control, int event, int data);
void SSL_OpenCB(int menuBar, int item);
int SSL_PathCB(int panel, int control, int event, int data);
int SSL_ListCB(int panel, int control, int event, int data);
int SSL_ButtonCB(int panel, int control, int event, int data);

#endif
