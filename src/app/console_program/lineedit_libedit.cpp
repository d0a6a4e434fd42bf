#include "app/console_program/lineedit.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <editline/readline.h>
#include <unistd.h>
#include <vector>

#include "console/monitor/completion.h"

namespace {

// What libedit wants: what all have in common, then the candidates, all from malloc.
char **Complete(const char *, int, int end)
{
    std::vector<std::string> candidates;
    CON_Complete(rl_line_buffer, static_cast<size_t>(end), &candidates);
    rl_attempted_completion_over = 1; // no file names instead
    if (candidates.empty())
        return nullptr;
    char **list = static_cast<char **>(std::calloc(candidates.size() + 2, sizeof(char *)));
    if (!list)
        return nullptr;
    list[0] = strdup(CON_GetCommonStart(candidates).c_str());
    for (size_t i = 0; i < candidates.size(); i++)
        list[i + 1] = strdup(candidates[i].c_str());
    return list;
}

} // namespace

bool CPG_IsTerminal()
{
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1;
}

bool CPG_IsErrorTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

int CPG_ReadLine(const std::string &prompt, std::string *line)
{
    constexpr size_t ROW_CHARS = 80;
    rl_attempted_completion_function = Complete;
    rl_basic_word_break_characters = " \t,!";
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
    // A longer line has wrapped, and how many rows it took is not known.
    if (prompt.size() + line->size() < ROW_CHARS)
        std::fputs("\033[A\033[2K", stdout);
    return 1;
}
