// Looks a command up, fills its parameters by the codes of its row and calls it. Error
// texts are left in szScrFnErrMsg: the caller decides whether they are printed.
#include "console/script/script_command.h"

#include <cstring>

#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "symbols/assignment.h"
#include "text/tokens.h"

std::string szScrFnErrMsg;

namespace {

int FailLine(int result, const char *text)
{
    szScrFnErrMsg = text;
    return result;
}

int CallCommand(const ScrRow &row, ScrPar *par)
{
    if (!row.run) {
        szScrFnErrMsg = SCR_GetAbsentText(row.name);
        return -1;
    }
    return row.run(par);
}

// Every parameter of the row must be there: commands have no optional ones. What has been
// parsed in front of a fault stays in the records, which nobody looks at then.
int ParseParameters(const char *cursor, const ScrRow &row, ScrPar *par)
{
    for (int i = 0; i < PARAMS_MAX && row.codes[i] != 0; i++) {
        if (i > 0 && !TXT_SkipComma(&cursor))
            return FailLine(SCR_ERR_SPLITTER, "Error in ExecScrCmd: syntax - bad splitter.");
        if (ScrGetPar(&cursor, &par[i], row.codes[i]) < 0)
            return FailLine(SCR_ERR_PARAMETER, "Error in ExecScrCmd: bad parameter type.");
    }
    if (*TXT_SkipBlanks(cursor) != '\0')
        return FailLine(SCR_ERR_TOO_MANY, "Error in ExecScrCmd: too many parameters.");
    return 0;
}

} // namespace

const ScrRow *SCR_Find(const std::string &name, const ScrRow *table, int count)
{
    for (int i = 0; i < count; i++)
        if (TXT_IsSameWord(name, table[i].name))
            return &table[i];
    return nullptr;
}

int ExecScrCmd(const char *line, const ScrRow *table, int count)
{
    line = TXT_SkipBlanks(line);
    if (*line == ';') // a comment, also at the prompt
        return 0;
    const size_t length = TXT_NameLength(line);
    if (length == 0)
        return SCR_UNKNOWN;
    if (length > COMMAND_NAME_CHARS)
        return FailLine(SCR_ERR_LONG_NAME, "Error in ExecScrCmd: command too long.");
    const ScrRow *row = SCR_Find(std::string(line, length), table, count);
    if (!row)
        return SCR_UNKNOWN;
    ScrPar par[PARAMS_MAX];
    if (row->codes[0] == PAR_EXTERN) { // the whole line, its name included, is one text
        const size_t lineLength = std::strlen(line);
        if (lineLength > EXTERN_LINE_CHARS)
            return FailLine(SCR_ERR_LONG_LINE, "Error in ExecScrCmd: extern command too long.");
        std::memcpy(par[0].text, line, lineLength + 1);
        return CallCommand(*row, par);
    }
    const int result = ParseParameters(line + length, *row, par);
    return result < 0 ? result : CallCommand(*row, par);
}

int SCR_Fail(const std::string &text)
{
    szScrFnErrMsg = "ERROR - " + text;
    return -1;
}

// A link that did not fail has not proven either: answers came more than once.
int SCR_FailLink(const std::string &text)
{
    const std::string cause = UCM_LastErrorText();
    return SCR_Fail(text + " (" + (cause.empty() ? "answers came twice, try again" : cause) + ")");
}

std::string SCR_GetAbsentText(const std::string &name)
{
    return "ERROR - " + name + ": this version has no such function yet.";
}

void PrintType(uint32_t code)
{
    std::string text;
    ATP_toStr(code, &text);
    text = text.substr(1, text.size() - 2); // without its parentheses
    if (text.compare(0, 2, "f4") == 0)      // people write the cast, not the code's name
        text.replace(0, 2, "float");
    PrintMonStr(text.empty() ? text : text + " ");
}
