// Windows: its console edits and remembers lines by itself.
#include "app/console_program/lineedit.h"

#include <cstdio>
#include <io.h>

bool CPG_IsTerminal()
{
    return _isatty(_fileno(stdin)) != 0 && _isatty(_fileno(stdout)) != 0;
}

bool CPG_IsErrorTerminal()
{
    return _isatty(_fileno(stderr)) != 0;
}

int CPG_ReadLine(const std::string &prompt, std::string *line)
{
    std::fputs(prompt.c_str(), stdout);
    std::fflush(stdout); // no line end, so nothing else would bring it out
    line->clear();
    int c = std::getchar();
    if (c == EOF)
        return 0;
    for (; c != EOF && c != '\n'; c = std::getchar())
        line->push_back(static_cast<char>(c));
    return 1;
}
