// What is asked of a set as a whole: whether two values are the same, whether it still fits the
// symbols it was made with, and what was wrong with its files.
#include "sets/set.h"

#include "calendar/crc32.h"
#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "text/words.h"

#include <cstring>

std::string PST_FormatProblems(const PST_Problems &problems)
{
    std::string text;
    // Names and texts come from files: control characters must not steer a terminal.
    for (const PST_Problem &problem : problems.list) {
        text += TXT_Visible(problem.file);
        if (problem.line > 0)
            text += ", line " + std::to_string(problem.line);
        text += ": " + TXT_Visible(problem.text) + "\n";
    }
    if (problems.count > problems.list.size())
        text += std::to_string(problems.count - problems.list.size()) + " more\n";
    return text;
}

bool PST_IsSame(const PST_Entry &entry, const PST_Held &a, const PST_Held &b)
{
    return a.isThere && b.isThere && std::memcmp(a.bytes.data(), b.bytes.data(), entry.size) == 0;
}

// Tells two builds of a firmware apart by their symbols; the order of the nodes is that of the
// names.
uint32_t PST_MapStamp()
{
    uint32_t stamp = 0;
    for (int i = 0; i < nNodes; ++i) {
        const std::string line =
            std::string(aVarNode[i].name) + '=' + std::to_string(aVarNode[i].addr) + '\n';
        stamp = Crc32_LSBNext(stamp, line.data(), line.size(), CRC32_POLYNOMIAL);
    }
    return stamp;
}

uint32_t PST_SymbolsStamp()
{
    // Asked whenever the window comes to the front: a check sum is quicker than reading the header.
    uint32_t stamp = PST_MapStamp();
    const auto add = [&stamp](const void *data, size_t size) {
        stamp = Crc32_LSBNext(stamp, data, size, CRC32_POLYNOMIAL);
    };
    const auto addDecl = [&add](const TMF_Decl &decl) {
        add(decl.name, std::strlen(decl.name));
        add(decl.chain, sizeof decl.chain);
    };
    for (int32_t i = 0; i < TMF_cnDefVars; ++i)
        addDecl(TMF_paDefVars[i]);
    for (int32_t i = 0; i < TMF_cnDefStructCts; ++i)
        for (int32_t k = 0; k < TMF_paDefStructCts[i].members; ++k)
            addDecl(TMF_paDefStructCts[i].paMembers[k]);
    add(&Procesor, sizeof Procesor);
    return stamp;
}
