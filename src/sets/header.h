// Reads a header (.ulh): one thing a line, its names resolved through the loaded map and
// type map into single values with their places in the target.
#ifndef SETS_HEADER_H
#define SETS_HEADER_H

#include "sets/set.h"

#include <string>

// 0, or -1: the reasons are in *problems, each with its file and line, and *set is of no use.
// Read anew whenever map, type map or processor change.
int PST_ReadHeader(const std::string &path, PST_Set *set, PST_Problems *problems);

// A value that says which symbols the loaded map has and where; 0 without a map. Two builds
// with every symbol in its place have the same.
uint32_t PST_MapStamp();
// The same over everything that names and types depend on: map, type map and processor.
uint32_t PST_SymbolsStamp();

#endif
