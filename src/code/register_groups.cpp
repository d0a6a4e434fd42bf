#include "code/register_groups.h"

#include <algorithm>
#include <cstring>

#include "settings/settings.h"
#include "symbols/varnode.h"

namespace {

// Patterns: "#" stands for a digit, "*" for any rest; the first that fits decides.
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
const char *const C166_GROUPS[] = {
    "System", "Ports",  "Interrupts", "Timers", "Capture and compare",
    "Serial", "Analog", "PWM",        "CAN"};

// Receive buffers and results: the read itself tells the peripheral that they were taken.
const char *const TOUCHY[] = {"S0RBUF",    "S1RBUF",    "SSCRB",   "ADDAT", "ADDAT2",
                              "*SCIRXBUF", "*SPIRXBUF", "*I2CDRR", "*DRR1", "*DRR2",
                              "*SCIFFRX",  "*SPIFFRX",  "*CANRIFR"};

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
    if (Procesor == CPU_C166 || Procesor == CPU_C167) {
        for (const Rule &rule : C166_RULES)
            if (Fits(rule.pattern, name))
                return rule.group;
    }
    const char *end = std::strchr(name, '_');
    return end != nullptr ? std::string(name, end) : "Other";
}

CODE_RegisterGroup *FindOrAdd(std::vector<CODE_RegisterGroup> *groups, const std::string &name)
{
    for (CODE_RegisterGroup &group : *groups)
        if (group.name == name)
            return &group;
    groups->push_back({name, {}});
    return &groups->back();
}

} // namespace

std::vector<CODE_RegisterGroup> CODE_GetRegisterGroups()
{
    std::vector<CODE_RegisterGroup> groups;
    if (openStruct166 && (Procesor == CPU_C166 || Procesor == CPU_C167))
        for (const char *name : C166_GROUPS)
            groups.push_back({name, {}});
    for (int i = 0; openStruct166 && i < nNodes166; ++i) {
        const VarNode &node = aVarNode166[i];
        const bool isTouchy =
            std::any_of(std::begin(TOUCHY), std::end(TOUCHY),
                        [&node](const char *pattern) { return Fits(pattern, node.name); });
        FindOrAdd(&groups, FindGroup(node.name))
            ->registers.push_back({node.name, node.addr, isTouchy});
    }
    for (CODE_RegisterGroup &group : groups)
        std::sort(
            group.registers.begin(), group.registers.end(),
            [](const CODE_Register &a, const CODE_Register &b) { return a.address < b.address; });
    groups.erase(std::remove_if(groups.begin(), groups.end(),
                                [](const CODE_RegisterGroup &g) { return g.registers.empty(); }),
                 groups.end());
    return groups;
}
