#include "app/console_program/lineedit.h"

#include <cstdio>
#include <cstdlib>
#include <editline/readline.h>
#include <unistd.h>

bool LNE_IsTerminal()
{
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1;
}

bool LNE_IsErrorTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

int LNE_ReadLine(const std::string &prompt, std::string *line)
{
    constexpr size_t ROW_CHARS = 80;
    char *typed = readline(prompt.c_str());
    if (!typed) {
        std::putchar('\n');
        return 0;
    }
    *line = typed;
    std::free(typed);
    if (!line->empty())
        add_history(line->c_str());
    // The console echoes the line with its own prompt: let that take the typed one's place.
    if (prompt.size() + line->size() < ROW_CHARS)
        std::fputs("\033[A\033[2K", stdout);
    return 1;
}
