// The values of a set in the target at STATION: neighbours are read and written together,
// values never in two pieces. The link is open; nobody below this room knows sets.
#ifndef SETS_DEVICE_H
#define SETS_DEVICE_H

#include "sets/set.h"

#include <string>
#include <vector>

enum {
    PST_OK = 0,
    PST_ERR_LINK = -1,     // no answer, or none that could be proven
    PST_ERR_CANCELLED = -2 // between two blocks, by the user
};

// Reads all places, proven. On failure *image is as it was; *why says what happened.
int PST_ReadDevice(const PST_Set &set, PST_Image *image, const PST_Progress &progress,
                   std::string *why);
// The same for some of the places; the others keep what they have.
int PST_ReadPlaces(const PST_Set &set, const std::vector<uint32_t> &places, PST_Image *image,
                   const PST_Progress &progress, std::string *why);

// What became of a place that was to be written.
enum PST_State : uint8_t {
    PST_UNTOUCHED, // not written
    PST_WRITTEN,   // written, read back, the same
    PST_DIFFERENT, // written, but the target holds something else now
    PST_UNREAD,    // acknowledged, but not read back
    PST_IN_DOUBT,  // the target did not acknowledge it: it holds the old or the new value
};

// Writes the places with the values of *wanted (by place), reads each back and compares;
// stops at the first that the line refuses. *states (by place) says what became of each,
// *held what the target holds where it was read back. A place that differs does not stop it.
int PST_WritePlaces(const PST_Set &set, const std::vector<uint32_t> &places,
                    const PST_Image &wanted, PST_Image *held, std::vector<PST_State> *states,
                    const PST_Progress &progress, std::string *why);

#endif
