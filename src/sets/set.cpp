#include "sets/set.h"

#include "text/words.h"

#include <cstring>

std::string SET_FormatProblems(const SET_Problems &problems)
{
    std::string text;
    for (const SET_Problem &problem : problems.list) {
        text += WRD_Visible(problem.file);
        if (problem.line > 0)
            text += ", line " + std::to_string(problem.line);
        text += ": " + WRD_Visible(problem.text) + "\n";
    }
    if (problems.count > problems.list.size())
        text += std::to_string(problems.count - problems.list.size()) + " more\n";
    return text;
}

bool SET_IsSame(const SET_Entry &entry, const SET_Held &a, const SET_Held &b)
{
    return a.isThere && b.isThere && std::memcmp(a.bytes.data(), b.bytes.data(), entry.size) == 0;
}
