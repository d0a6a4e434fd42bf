#include "sets/set.h"

#include "text/words.h"

#include <cstring>

std::string PST_FormatProblems(const PST_Problems &problems)
{
    std::string text;
    for (const PST_Problem &problem : problems.list) {
        text += WRD_Visible(problem.file);
        if (problem.line > 0)
            text += ", line " + std::to_string(problem.line);
        text += ": " + WRD_Visible(problem.text) + "\n";
    }
    if (problems.count > problems.list.size())
        text += std::to_string(problems.count - problems.list.size()) + " more\n";
    return text;
}

bool PST_IsSame(const PST_Entry &entry, const PST_Held &a, const PST_Held &b)
{
    return a.isThere && b.isThere && std::memcmp(a.bytes.data(), b.bytes.data(), entry.size) == 0;
}
