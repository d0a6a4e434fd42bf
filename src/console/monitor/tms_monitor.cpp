// The line interpreter for a TMS320 behind a C166 station. Addresses are words; every
// access goes through the station's mailbox.
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
    if (!CON_ParseAddress(&cursor, &dwAddr))
        return RefuseArguments(panel);
    uint32_t count = DUMP_WORDS;
    if (!CON_SkipComma(&cursor)) {
        if (*CON_SkipBlanks(cursor) != '\0')
            return RefuseArguments(panel);
    } else if (!CON_ParseDecimal(&cursor, &count)) {
        count = DUMP_WORDS;
    }
    return count > DUMP_WORDS_MAX ? RefuseArguments(panel) : dump_Naddr(panel, dwAddr, count);
}

int WriteLetter(int panel, const char *argument)
{
    const char *cursor = *argument == '\0' ? argument : CON_SkipBlanks(argument + 1);
    if (!VAL_IsKind(*argument) || !CON_ParseAddress(&cursor, &dwAddr) ||
        *CON_SkipBlanks(cursor) != '\0')
        return RefuseArguments(panel);
    return write_addr(panel, dwAddr, *argument);
}

int LoadLetter(int panel, const char *argument)
{
    MemoryFileRequest request;
    if (!MFL_ParseLoad(argument, &request))
        return RefuseArguments(panel);
    dwAddr = request.address;
    return load_addr(panel, request);
}

int StoreLetter(int panel, const char *argument)
{
    MemoryFileRequest request;
    if (!MFL_ParseStore(argument, &request))
        return RefuseArguments(panel);
    dwAddr = request.address;
    return store_addr(panel, request);
}

struct Letter {
    char letter;
    int (*run)(int panel, const char *argument);
};
const Letter LETTERS[] = {
    {'d', DumpLetter}, {'w', WriteLetter}, {'l', LoadLetter}, {'s', StoreLetter}};

int LeaveTms()
{
    PrintMonStr("\nExit Monitor ...\n");
    command = CMD_C166;
    CON_ShowModePrompt();
    return 0;
}

int RunLetter(int panel, const char *line)
{
    for (const Letter &row : LETTERS) {
        if (row.letter != *line)
            continue;
        if (CON_HoldLink(LINK_NO_QUESTION) < 0)
            return -1;
        const int result = row.run(panel, CON_SkipBlanks(line + 1));
        CON_ReleaseLink();
        return result;
    }
    return RefuseArguments(panel);
}

} // namespace

int RunTMSMonitor(int panel, const char *line)
{
    line = CON_SkipBlanks(line);
    if (*line == '\0') {
        PrintTmsCmdHelp(panel);
        return 0;
    }
    // Leaving needs no link: a user whose port is gone can still go back.
    if (*line == 'x' && *CON_SkipBlanks(line + 1) == '\0')
        return LeaveTms();
    const int result = RunLetter(panel, line);
    CON_ScrollToEnd();
    return result;
}
