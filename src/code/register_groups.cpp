#include "code/register_groups.h"

#include <algorithm>
#include <cstring>

#include "settings/settings.h"
#include "symbols/varnode.h"

namespace {

// The order matters: an exception stands in front of the rule that would take it, as "CC*IC" in
// front of "CC*". Patterns: "#" stands for a digit, "*" for any rest; the first that fits decides.
struct Rule {
    const char *pattern;
    const char *group;
};

const Rule C166_RULES[] = {
    {"CC*IC", "Interrupts"},
    {"*IC", "Interrupts"},
    {"PECC*", "Interrupts"},
    {"EXICON", "Interrupts"},
    {"P#", "Ports"},
    {"P#L", "Ports"},
    {"P#H", "Ports"},
    {"DP#*", "Ports"},
    {"ODP*", "Ports"},
    {"RP0H", "Ports"},
    {"CC*", "Capture and compare"},
    {"T#*", "Timers"},
    {"CAPREL", "Timers"},
    {"S0*", "Serial"},
    {"S1*", "Serial"},
    {"SSC*", "Serial"},
    {"AD*SEL#", "System"},
    {"AD*", "Analog"},
    {"PP#", "PWM"},
    {"PT#", "PWM"},
    {"PW*", "PWM"},
    {"C1*", "CAN"},
    {"*", "System"},
};
// As the ring offers them: what concerns the core first.
const char *const C166_GROUPS[] = {
    "System", "Ports",  "Interrupts", "Timers", "Capture and compare",
    "Serial", "Analog", "PWM",        "CAN"};

// Receive buffers and results: the read itself tells the peripheral that they were taken.
const char *const TOUCHY[] = {"S0RBUF",    "S1RBUF",    "SSCRB",   "ADDAT", "ADDAT2",
                              "*SCIRXBUF", "*SPIRXBUF", "*I2CDRR", "*DRR1", "*DRR2",
                              "*SCIFFRX",  "*SPIFFRX",  "*CANRIFR"};

// Calls itself for what follows a star; names and patterns are short.
bool Fits(const char *pattern, const char *name)
{
    for (; *pattern != '\0'; ++pattern, ++name) {
        if (*pattern == '*') {
            // Any rest, in front of whatever follows the star.
            for (const char *rest = name;; ++rest) {
                if (Fits(pattern + 1, rest))
                    return true;
                if (*rest == '\0')
                    return false;
            }
        }
        const bool isDigit = *name >= '0' && *name <= '9';
        if (*pattern == '#' ? !isDigit : *pattern != *name)
            return false;
    }
    return *name == '\0';
}

// On the TMS320 a name begins with its peripheral: "ePWM4_CMPA".
std::string FindGroup(const char *name)
{
    if (!IsWordAddressing(Procesor)) {
        for (const Rule &rule : C166_RULES)
            if (Fits(rule.pattern, name))
                return rule.group;
    }
    const char *end = std::strchr(name, '_');
    return end != nullptr ? std::string(name, end) : "Other";
}

} // namespace

std::vector<CODE_RegisterGroup> CODE_GetRegisterGroups()
{
    std::vector<CODE_RegisterGroup> groups;
    // These in an order that people know, those of a TMS320 in order of their first register.
    if (openStruct166 && !IsWordAddressing(Procesor))
        for (const char *name : C166_GROUPS)
            groups.push_back({name, {}});
    for (int i = 0; openStruct166 && i < nNodes166; ++i) {
        const VarNode &node = aVarNode166[i];
        // By name, as the register map knows no effects of a read.
        const bool isTouchy =
            std::any_of(std::begin(TOUCHY), std::end(TOUCHY),
                        [&node](const char *pattern) { return Fits(pattern, node.name); });
        const std::string name = FindGroup(node.name);
        auto group = std::find_if(groups.begin(), groups.end(),
                                  [&name](const auto &known) { return known.name == name; });
        if (group == groups.end())
            group = groups.insert(groups.end(), CODE_RegisterGroup{name, {}});
        group->registers.push_back({node.name, node.addr, isTouchy});
    }
    for (CODE_RegisterGroup &group : groups)
        std::sort(
            group.registers.begin(), group.registers.end(),
            [](const CODE_Register &a, const CODE_Register &b) { return a.address < b.address; });
    // A C166 lacks what a C167 has: no group without a register is offered.
    groups.erase(std::remove_if(groups.begin(), groups.end(),
                                [](const CODE_RegisterGroup &g) { return g.registers.empty(); }),
                 groups.end());
    return groups;
}
