// The windows that pick what to watch: the variable selector (a searchable list of the
// map's variables, the registers and the variables of a TMS320 behind the station) and
// the structure selector (members and elements, level by level). They own nothing but
// what they show, and add to the watch list through watch/list/edit.h.
#ifndef WATCH_WINDOWS_SELECTORS_H
#define WATCH_WINDOWS_SELECTORS_H

#include <string>

// Values of the variable selector's source ring.
enum SEL_VariableSource { SEL_SOURCE_MAP = 0, SEL_SOURCE_REGISTERS = 1, SEL_SOURCE_TMS = 2 };

// Whether a filter lets a name through, in either case of letters: the filter is part of
// the name, or, with a "*" (any run of characters) in it, matches all of it.
bool SEL_IsMatch(const std::string &filter, const std::string &name);

// Maps, types or the processor have changed: windows that are open show it at once.
void SEL_SymbolsChanged();

// Opens the structure selector on an expression; "" lists every variable with parts. 0, or
// -1: the expression names nothing that has parts (said in the window, which then shows
// what it showed before).
int TMF_DisplayStructSelector(const std::string &expression);
// Builds the window's list anew from the tables as they are.
void TMF_CreateStructSelector();

// Menu, panel and control callbacks.
void SEL_VariableOpenCB(int menuBar, int item);
int SEL_VariableFilterCB(int panel, int control, int event, int data);
int SEL_VariableListCB(int panel, int control, int event, int data);
int SEL_VariableSourceCB(int panel, int control, int event, int data);
int SEL_VariableButtonCB(int panel, int control, int event, int data);
void SEL_StructureOpenCB(int menuBar, int item);
int SEL_StructurePathCB(int panel, int control, int event, int data);
int SEL_StructureListCB(int panel, int control, int event, int data);
int SEL_StructureButtonCB(int panel, int control, int event, int data);

#endif
