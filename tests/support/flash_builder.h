// Packs a map and the loaded type map into a flash directory, as the target's own build
// does: the way there, written apart from the way back that the program knows.
#ifndef TESTS_SUPPORT_FLASH_BUILDER_H
#define TESTS_SUPPORT_FLASH_BUILDER_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

using FlashVars = std::vector<std::pair<uint32_t, std::string>>; // word address and name

std::string FLB_Pack6b(const std::string &name);
std::string FLB_PackCode(uint32_t typeCode);
// `form`: 0 plain lines, 1 shared names, 2 packed records.
std::string FLB_PackVarMap(const FlashVars &vars, int form);
std::string FLB_PackDecls(const FlashVars &vars); // from the loaded type map
std::string FLB_PackStructs();
std::string FLB_Header(char mark, const std::string &name, size_t length, char flags);
// A file with header and trailer; a text of odd length gets a CR before its last LF.
std::string FLB_File(const std::string &name, std::string content, char flags = '\xFF');
std::string FLB_Directory(const FlashVars &vars, int form);

#endif
