#include "watch/windows/name_completion.h"

#include <algorithm>
#include <cctype>

#include "comm/sysaddr.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"

namespace {

bool startsWithNoCase(const char *name, const std::string &start)
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
void addNames(const VarNode *table, int count, const std::string &start,
              std::vector<std::string> *names)
{
    for (int i = 0; i < count; ++i) {
        const char *name = table[i].name;
        if (startsWithNoCase(name, start) || (*name == '_' && startsWithNoCase(name + 1, start)))
            names->push_back(name);
    }
}

void collect(const std::string &start, bool isTMS, std::vector<std::string> *names)
{
    if (isTMS) {
        addNames(aVarTMSNode, nTMSNodes, start, names);
    } else if (start.find_first_of(".[") != std::string::npos) {
        addNames(TMF_paSVNode, TMF_cnSVNode, start, names);
    } else {
        addNames(aVarNode, nNodes, start, names);
        addNames(aVarNode166, nNodes166, start, names);
    }
}

} // namespace

std::vector<std::string> NCM_Complete(const std::string &typed)
{
    const char *rest = typed.c_str();
    GetStationModifier(&rest);
    while (*rest == ' ')
        ++rest;
    const bool isTMS = *rest == '&';
    const std::string start = rest + isTMS;
    const std::string prefix = typed.substr(0, typed.size() - start.size());
    std::vector<std::string> names;
    if (!start.empty())
        collect(start, isTMS, &names);
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

std::vector<std::string> NCM_CompleteCB(int /*panel*/, int /*control*/, const std::string &typed)
{
    return NCM_Complete(typed);
}
