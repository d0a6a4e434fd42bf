// The command table that console and scripts share, and the engine that splits a
// command line into a name and typed parameters and calls the command.
#ifndef CONSOLE_SCRIPT_SCRIPT_COMMAND_H
#define CONSOLE_SCRIPT_SCRIPT_COMMAND_H

#include <cstdint>
#include <string>

#include "text/script_param.h"

enum SCR_Result {
    SCR_ERR_LONG_NAME = -1,
    SCR_ERR_PARAMETER = -3,
    SCR_ERR_SPLITTER = -4,
    SCR_ERR_TOO_MANY = -5,
    SCR_ERR_LONG_LINE = -6, // of an extern command
    SCR_UNKNOWN = -100,
};

constexpr size_t COMMAND_NAME_CHARS = 78;
constexpr size_t EXTERN_LINE_CHARS = 238;

// A command reads its parameters and answers 0 or a negative value, with its reason in
// szScrFnErrMsg.
typedef int (*ScrCommand)(ScrPar *par);

struct ScrRow {
    ScrCommand run; // null: the table knows the command, this version cannot run it
    const char *name;
    uint32_t codes[PARAMS_MAX]; // PAR_... sums; 0 ends the list
};

// The one table. The first SCR_cnTarget rows need the link, the rest does not; both counts are
// taken from the table.
extern const ScrRow SCR_aTable[];
extern const int SCR_cnTarget;
extern const int SCR_cnTable;

// The command's result, or an SCR_ code. Error texts go to szScrFnErrMsg.
int ExecScrCmd(const char *line, const ScrRow *table, int count);
const ScrRow *SCR_Find(const std::string &name, const ScrRow *table, int count); // or null

// The words of an assignment's type code on the console, each with a blank behind it.
void PrintType(uint32_t code);

// Sets szScrFnErrMsg to "ERROR - " and the text. Always -1.
int SCR_Fail(const std::string &text);
// The same for what the link refused: its cause follows in parentheses.
int SCR_FailLink(const std::string &text);
std::string SCR_GetAbsentText(const std::string &name);

#endif
