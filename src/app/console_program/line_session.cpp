// Lines from standard input, typed into the console's input field and entered.
#include <cstdio>

#include "app/console_program/lineedit.h"
#include "app/console_program/sessions.h"
#include "app/startup.h"
#include "comm/communication.h"
#include "console/monitor/monitor.h"
#include "settings/settings.h"
#include "ui/resource.h"

namespace {

constexpr size_t LINE_MAX_CHARS = 4000;

// 1 a line, 0 end of file, -1 a line that is too long (skipped, with a message).
int ReadPiped(std::string *line)
{
    line->clear();
    int c = std::getchar();
    if (c == EOF)
        return 0;
    size_t length = 0;
    for (; c != EOF && c != '\n'; c = std::getchar(), length++)
        if (length < LINE_MAX_CHARS)
            line->push_back(static_cast<char>(c));
    if (length > LINE_MAX_CHARS) {
        std::fprintf(stderr, "Line of %zu characters refused (at most %zu).\n", length,
                     LINE_MAX_CHARS);
        return -1;
    }
    if (!line->empty() && line->back() == '\r')
        line->pop_back();
    return 1;
}

} // namespace

int CPG_RunSession()
{
    const bool isTyped = CPG_IsTerminal();
    std::string line;
    while (!HL_IsQuit() && !CON_isExit) {
        ProcessSystemEvents();
        std::string prompt;
        GetCtrlVal(consolePanel, CONSOLE_PROMPT, &prompt); // a command may have changed it
        const int result = isTyped ? CPG_ReadLine(prompt + " ", &line) : ReadPiped(&line);
        if (result == 0)
            break;
        if (result < 0) {
            CON_nFailed++;
            continue;
        }
        HL_SetUserVal(consolePanel, CONSOLE_INPUT, line);
        HL_Key(consolePanel, CONSOLE_INPUT, KEY_ENTER);
        // A person gets the prompt again; of a pipe's lines none runs behind a broken-off one.
        if (!isTyped && HL_IsEndWished())
            break;
    }
    if (HL_IsQuit() || ExitApplication(mainPanel) == 0)
        return 0;
    // Nobody is left to ask: what the question at the end did not save is named, and is no
    // success.
    std::fprintf(stderr, "The changed watch list was not saved.\n");
    IsDBGChange = 0;
    ExitApplication(mainPanel);
    QuitUserInterface(1);
    return 0;
}

int CPG_RunScript()
{
    VIR2_StopPeriodicASC();
    return VR_nScriptResult < 0 || CON_nRefused > 0 ? 1 : 0;
}
