// The values of a set in the target at STATION: neighbours are read and written together,
// values never in two pieces. The link is open; nobody below this room knows sets.
#ifndef SETS_DEVICE_H
#define SETS_DEVICE_H

#include "sets/set.h"

#include <string>
#include <vector>

enum {
    SET_OK = 0,
    SET_ERR_LINK = -1,     // no answer, or none that could be proven
    SET_ERR_CANCELLED = -2 // between two blocks, by the user
};

// Reads all places, proven. On failure *image is as it was; *why says what happened.
int SET_ReadDevice(const SET_Set &set, SET_Image *image, const SET_Progress &progress,
                   std::string *why);
// The same for some of the places; the others keep what they have.
int SET_ReadPlaces(const SET_Set &set, const std::vector<uint32_t> &places, SET_Image *image,
                   const SET_Progress &progress, std::string *why);

// What became of a place that was to be written.
enum SET_State : uint8_t {
    SET_UNTOUCHED, // not written
    SET_WRITTEN,   // written, read back, the same
    SET_DIFFERENT, // written, but the target holds something else now
    SET_UNREAD,    // acknowledged, but not read back
    SET_IN_DOUBT,  // the target did not acknowledge it: it holds the old or the new value
};

// Writes the places with the values of *wanted (by place), reads each back and compares;
// stops at the first that the line refuses. *states (by place) says what became of each,
// *held what the target holds where it was read back. A place that differs does not stop it.
int SET_WritePlaces(const SET_Set &set, const std::vector<uint32_t> &places,
                    const SET_Image &wanted, SET_Image *held, std::vector<SET_State> *states,
                    const SET_Progress &progress, std::string *why);

#endif
