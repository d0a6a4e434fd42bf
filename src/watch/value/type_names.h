// The display types of watch items as windows name them.
#ifndef WATCH_VALUE_TYPE_NAMES_H
#define WATCH_VALUE_TYPE_NAMES_H

struct TYN_Row {
    char type;
    const char *name;
    int onlySize; // bytes; 0 = 1, 2, 4 or 8
};
extern const TYN_Row TYN_aRows[];
extern const int TYN_cnRows;

const TYN_Row *TYN_Find(char type); // null when there is no such type

#endif
