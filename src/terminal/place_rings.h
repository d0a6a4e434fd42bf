// The rings of both terminal windows that say which station is meant and what its characters
// mean.
#ifndef TERMINAL_PLACE_RINGS_H
#define TERMINAL_PLACE_RINGS_H

// The station of the program, or another one: values -1 and 0 to 15.
void TRI_FillStations(int panel, int control);
int TRI_GetStation(int panel, int control); // the one that is meant now
// The code pages by name, values CPT_...; with `first`, which has the value -1, in front of them.
void TRI_FillPages(int panel, int control, const char *first, int chosen);

#endif
