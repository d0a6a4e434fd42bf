// What a client of --serve names, as watch items: each text with its type has a place in
// aLItems, so that names follow the maps and values are read, proven, ranged and written
// as everywhere else.
#ifndef APP_CONSOLE_PROGRAM_SERVE_ITEMS_H
#define APP_CONSOLE_PROGRAM_SERVE_ITEMS_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

typedef nlohmann::ordered_json CPG_Json;

CPG_Json CPG_MakeServeError(const std::string &code, const std::string &message);

// The place of an item, "nSpeed" or {"name": "[8010]", "type": "u2"}; -1 with *error. Places are
// given up when all are used, unless `isKept` (somebody watches some of them).
int CPG_FindServeItem(const CPG_Json &item, bool isKept, CPG_Json *error);
void CPG_ForgetServeItems();

CPG_Json CPG_DescribePlace(int index); // name, address, type, size, station
CPG_Json CPG_DescribeValue(int index); // name, value, text, raw; or name and error

#endif
