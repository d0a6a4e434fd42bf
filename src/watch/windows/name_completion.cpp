// The tables are sorted with regard to case and searched without, so each is gone through whole.
#include "watch/windows/name_completion.h"

#include <algorithm>
#include <cctype>

#include "comm/sysaddr.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"

namespace {

bool StartsWithNoCase(const char *name, const std::string &start)
{
    for (const char c : start) {
        if (std::tolower(static_cast<unsigned char>(c)) !=
            std::tolower(static_cast<unsigned char>(*name)))
            return false;
        ++name;
    }
    return true;
}

// Compilers put a "_" in front of names; who types without it means them too.
void AddNames(const VarNode *table, int count, const std::string &start,
              std::vector<std::string> *names)
{
    for (int i = 0; i < count; ++i) {
        const char *name = table[i].name;
        if (StartsWithNoCase(name, start) || (*name == '_' && StartsWithNoCase(name + 1, start)))
            names->push_back(name);
    }
}

} // namespace

std::vector<std::string> WIN_CompleteName(const std::string &typed)
{
    // Station and "&" say where to look and stay as they were typed.
    const char *rest = typed.c_str();
    GetStationModifier(&rest);
    while (*rest == ' ')
        ++rest;
    const bool isTMS = *rest == '&';
    const std::string start = rest + isTMS;
    const std::string prefix = typed.substr(0, typed.size() - start.size());
    std::vector<std::string> names;
    if (start.empty()) // everything would be no help
        return names;
    if (isTMS) {
        AddNames(aVarTMSNode, nTMSNodes, start, &names);
    } else if (start.find_first_of(".[") != std::string::npos) {
        AddNames(TMF_paSVNode, TMF_cnSVNode, start, &names);
    } else {
        AddNames(aVarNode, nNodes, start, &names);
        AddNames(aVarNode166, nNodes166, start, &names);
    }
    // A map's variable may have a register's name.
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    if (names.size() > COMPLETIONS_MAX)
        names.resize(COMPLETIONS_MAX);
    if (names.size() == 1 && names[0] == start)
        names.clear();
    for (std::string &name : names)
        name.insert(0, prefix);
    return names;
}

std::vector<std::string> WIN_CompleteNameCB(int /*panel*/, int /*control*/,
                                            const std::string &typed)
{
    return WIN_CompleteName(typed);
}
