// The registers of the selected processor in groups that people look for: by name, from the
// loaded register table. Owns nothing.
#ifndef CODE_REGISTER_GROUPS_H
#define CODE_REGISTER_GROUPS_H

#include <cstdint>
#include <string>
#include <vector>

struct CODE_Register {
    std::string name;
    uint32_t address = 0;
    bool isTouchy = false; // reading it changes the target: never read without being asked
};

struct CODE_RegisterGroup {
    std::string name;
    std::vector<CODE_Register> registers; // by address
};

// Every register of the table in exactly one group; none without a register table.
std::vector<CODE_RegisterGroup> CODE_GetRegisterGroups();

#endif
