// The help texts, one row a line, leading blanks included. What only the full command set admits
// has a table of its own: nobody is told of a command that would be refused.
#include "console/monitor/monitor.h"

#include "settings/settings.h"

namespace {

const char *const COMMAND_HELP[] = {
    " Commands:",
    "   upload  -h,       ... upload variables from C16x",
    "   download  -h,,0   ... download variables to C16x",
    "   ldx2vldx -h,,     ... visualisation of ldx file to html file",
    "   ldcmpldx file.ldx   ... define ldx file for comparison",
    "   mkcmpvldx file.tldx, outfile.html ... compare-visualise .ldx files defined by ldcmpldx",
    "   language          ... set the language (used in ldx2vldx)",
    "   m                  ... info about MapFile",
    "   m file.m66         ... open MapFile",
    "   station n          ... set slave station number (n=0..15)",
    "   procesor n         ... set processor type (n=166, 167, 28335)",
    "   compar 0,0         ... set COM parameters",
    "   getlog 'name',file ... read datalog",
};

// What only the full command set admits.
const char *const FULL_HELP[] = {
    "   set name           ... show a variable, by its type",
    "   set name = value   ... write it, read it back and compare; [(type)] [station:]name",
    "   tm file.tmf        ... open the types of the variables",
    "   mbread [slave:]function, start, quantity ... read registers or bits over Modbus",
    "   mbwrite [slave:]start, value [, value ...] ... write registers over Modbus",
};

// The TMS monitor has no command table and no second set: every letter is always admitted.
const char *const TMS_HELP[] = {
    " Monitor commands:",
    "  d addr[,n]        ... read memory (n addr., default value n=4)",
    "  wi addr           ... set memory (integer number)",
    "  wf addr           ... set memory (float number)",
    "  wx addr           ... set memory (hex number)",
    "  wu addr           ... set memory (unsign. int. number)",
    "\n  l addr, file      ... load data to memory",
    "  si addr, file, n  ... store memory (n addr.) to file (integer number)",
    "  sf addr, file, n  ... store memory (n addr.) to file (float number)",
    "\n  x                 ... exit Monitor",
    "",
};

template <size_t N> void PrintLines(const char *const (&lines)[N])
{
    for (const char *line : lines)
        PrintMonStr(line);
}

} // namespace

void PrintCmdHelp(int)
{
    PrintLines(COMMAND_HELP);
    if (VR_isFullCommandSet)
        PrintLines(FULL_HELP);
}

void PrintTmsCmdHelp(int)
{
    PrintLines(TMS_HELP);
}
