// The line interpreter for a TMS320 behind a C166 station. Addresses are words; every
// access goes through the station's mailbox. There is no gate of words and no command table
// here: a line is a letter, and what the letter does not understand gets the help.
#include <iterator>

#include "console/monitor/dump.h"
#include "console/monitor/link.h"
#include "console/monitor/memory_files.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/monitor/value_entry.h"
#include "text/tokens.h"

namespace {

constexpr uint32_t DUMP_WORDS = 4;         // when no count is given
constexpr uint32_t DUMP_WORDS_MAX = 65536; // more would hold the console for hours

int RefuseArguments(int panel)
{
    PrintTmsCmdHelp(panel);
    return -1;
}

int DumpLetter(int panel, const char *argument)
{
    const char *cursor = argument;
    if (!TXT_ParseAddress(&cursor, &dwAddr))
        return RefuseArguments(panel);
    uint32_t count = DUMP_WORDS;
    if (!TXT_SkipComma(&cursor)) {
        if (*TXT_SkipBlanks(cursor) != '\0')
            return RefuseArguments(panel);
    } else if (!TXT_ParseDecimal(&cursor, &count)) {
        count = DUMP_WORDS; // a count that is no number asks for the usual four
    }
    return count > DUMP_WORDS_MAX ? RefuseArguments(panel) : dump_Naddr(panel, dwAddr, count);
}

int WriteLetter(int panel, const char *argument)
{
    if (!CON_ParseStart(argument, &dwAddr))
        return RefuseArguments(panel);
    return write_addr(panel, dwAddr, *argument);
}

struct Letter {
    char letter;
    int (*run)(int panel, const char *argument);
};
const Letter LETTERS[] = {
    {'d', DumpLetter}, {'w', WriteLetter}, {'l', load_addr}, {'s', store_addr}};

} // namespace

int RunTMSMonitor(int panel, const char *line)
{
    line = TXT_SkipBlanks(line);
    if (*line == '\0') {
        PrintTmsCmdHelp(panel);
        return 0;
    }
    // Leaving needs no link: a user whose port is gone can still go back.
    if (*line == 'x' && *TXT_SkipBlanks(line + 1) == '\0') {
        PrintMonStr("\nExit Monitor ...\n");
        command = CMD_C166;
        CON_ShowModePrompt();
        return 0;
    }
    const Letter *letter = LETTERS;
    while (letter != std::end(LETTERS) && letter->letter != *line)
        ++letter;
    int result = -1;
    if (letter == std::end(LETTERS)) {
        RefuseArguments(panel);
    } else if (CON_HoldLink(LINK_NO_QUESTION) == 0) {
        result = letter->run(panel, TXT_SkipBlanks(line + 1));
        CON_ReleaseLink();
    }
    CON_ScrollToEnd();
    return result;
}
