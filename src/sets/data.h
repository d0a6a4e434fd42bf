// Data files (.ldx): the values of a set as text, one assignment a line, to be read, compared
// and edited by people. Reading needs no header; PST_Bind ties a file to one.
#ifndef SETS_DATA_H
#define SETS_DATA_H

#include "sets/set.h"

#include <string>
#include <vector>

struct PST_Record { // one line with a value
    std::string group, heading, name;
    std::string cast, value; // as they stand there
    PST_Attributes attributes;
    int line = 0;
};

struct PST_File {
    std::string path;
    std::string date, time; // "21-11-2026", "16:05:12"
    std::string device, processor, map, header;
    std::string station;
    uint32_t stamp = 0; // of the map, 0 = none
    std::vector<PST_Record> records;
};

// Reads the whole file: it must begin with its three header lines, have its end and no name
// twice. 0, or -1 with the reasons in *problems.
int PST_ReadData(const std::string &path, PST_File *file, PST_Problems *problems);

// The file's values by entry of the set. 0, or -1: names that the header does not know, types
// that do not fit, values out of range or outside the limits. *lines (may be null): the line
// of each entry's value, 0 where the file has none.
int PST_Bind(const PST_Set &set, const PST_File &file, PST_Image *values, std::vector<int> *lines,
             PST_Problems *problems);

// The values as a file that stands on no disk, for listings.
PST_File PST_MakeFile(const PST_Set &set, const PST_Image &values);

// Writes the values of all entries as of now, with the settings and map as they are. Lines
// of `remarks` stand above the end. 0, PLT_SAVE_ERR_..., or -1 when the disk did not take it.
int PST_WriteData(const std::string &path, const PST_Set &set, const PST_Image &values,
                  const std::vector<std::string> &remarks);
// Why writing failed, to stand behind a name.
const char *PST_WriteErrorText(int result);

// The selected processor as settings and data files name it: "AC167".
const char *PST_ProcessorName();

#endif
