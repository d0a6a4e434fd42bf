// Everything the console prints goes through PrintMonStr, the one place that knows
// the text box and keeps it from growing without end. What is copied and saved is what the box
// holds: the newest lines.
#include "console/monitor/text_box.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

#include "console/monitor/monitor.h"
#include "console/script/script.h"
#include "platform/safe_file.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/main_window.h"

namespace {

constexpr int TRIM_STEP = 250; // lines printed between two looks at the bound

int printedLines = 0; // since the last look

} // namespace

void CON_Print(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    PrintMonStr(TXT_FormatList(format, arguments));
    va_end(arguments);
}

void PrintMonStr(const std::string &text)
{
    size_t begin = 0;
    for (;;) {
        // A text of several lines is several lines of the box, which counts and trims them so.
        const size_t end = text.find('\n', begin);
        InsertTextBoxLine(consolePanel, CONSOLE_BOX, -1, text.substr(begin, end - begin));
        // The oldest lines go in batches, not one for each line that is printed.
        if (++printedLines >= TRIM_STEP) {
            printedLines = 0;
            int count = 0;
            GetNumTextBoxLines(consolePanel, CONSOLE_BOX, &count);
            if (count > CONSOLE_LINES_MAX)
                DeleteTextBoxLines(consolePanel, CONSOLE_BOX, 0, count - CONSOLE_LINES_MAX);
        }
        if (end == std::string::npos)
            return;
        begin = end + 1;
    }
}

void CON_ScrollToEnd()
{
    int count = 0;
    GetNumTextBoxLines(consolePanel, CONSOLE_BOX, &count);
    if (count > 0)
        SetCtrlAttribute(consolePanel, CONSOLE_BOX, ATTR_FIRST_VISIBLE_LINE, count - 1);
}

void CON_SetPrompt(const std::string &prompt)
{
    SetCtrlVal(consolePanel, CONSOLE_PROMPT, prompt);
}

void CON_ShowModePrompt()
{
    // The other modes are entries with a prompt of their own, which shows the address.
    CON_SetPrompt(command == CMD_TMS ? "S166\\TMS >" : "S166 >");
}

void CON_RefuseLongLine()
{
    CON_Print("The line is longer than %d characters and was not run.",
              static_cast<int>(LINE_CHARS_MAX));
}

std::string CON_GetText()
{
    int count = 0;
    GetNumTextBoxLines(consolePanel, CONSOLE_BOX, &count);
    std::string text;
    for (int i = 0; i < count; i++) {
        std::string line;
        GetTextBoxLine(consolePanel, CONSOLE_BOX, i, &line);
        text += i == 0 ? line : "\n" + line;
    }
    return text;
}

int CON_SaveText(const std::string &path)
{
    SafeFile file;
    if (PLT_BeginSave(&file, path, "wb") < 0)
        return -1;
    PLT_SaveText(file.file, CON_GetText() + "\n");
    return PLT_CommitSave(&file);
}

void CON_CopyTextCB(int, int)
{
    ClipboardPutText(CON_GetText());
}

void CON_ClearTextCB(int, int)
{
    ResetTextBox(consolePanel, CONSOLE_BOX, "");
}

void CON_SaveTextCB(int, int)
{
    std::string path;
    if (FileSelectPopup("", "*.txt", "*.txt", "Save console text", FILE_SAVE, &path) ==
        CON_NO_FILE_SELECTED)
        return;
    // Nothing of a failed save is left: the file that was there stays.
    if (CON_SaveText(path) < 0)
        MessagePopup("Error", PLT_SaveFailureText(path));
}

void CON_RunScriptCB(int, int)
{
    std::string path;
    if (FileSelectPopup("", "*.scr", "*.scr", "Run script", FILE_LOAD, &path) ==
        CON_NO_FILE_SELECTED)
        return;
    // As if it had been typed, so that a saved text shows what was run.
    WIN_ShowMainView(ITEM_CONSOLE_VIEW);
    CON_Print(" %s > !%s", VR1_GetCpuPrompt(), path.c_str());
    SCR_RunAndReport(path, consolePanel);
    CON_ScrollToEnd();
}
