// What the service terminal shows and logs. The box keeps the text; here is only the line that may
// still change, so that what is new goes to the box and nothing else.
#include "terminal/window_parts.h"

#include "runtime/userint.h"
#include "terminal/code_pages.h"
#include "terminal/log.h"
#include "terminal/screen.h"
#include "ui/resource.h"

namespace {

constexpr int PANEL = PANEL_TERMINAL;

TRM_Screen screen;
TRM_Log logFile;
std::string shownTail; // of the box's last line, which may still change
char lastEcho = 0;     // of what was sent

// "" or why the log has ended: the lines go on to the screen.
std::string LogLines()
{
    std::string trouble, told;
    for (const std::string &line : screen.done)
        if (TRM_PutLogLine(&logFile, line, &trouble) != 0) {
            told = trouble;
            T166_ShowLog();
        }
    return told;
}

void ShowScreen()
{
    std::string text;
    if (screen.isCleared) {
        ResetTextBox(PANEL, TERM_SCREEN, "");
        shownTail.clear();
    }
    for (const std::string &line : screen.done)
        text += line + "\n";
    const std::string tail = TRM_GetScreenLine(screen);
    text += tail;
    // A carriage return or backspace has changed what was shown: that line is written again.
    if (text.compare(0, shownTail.size(), shownTail) != 0) {
        int lines = 0;
        GetNumTextBoxLines(PANEL, TERM_SCREEN, &lines);
        DeleteTextBoxLines(PANEL, TERM_SCREEN, lines - 1, 1);
        shownTail.clear();
    }
    SetCtrlVal(PANEL, TERM_SCREEN, text.substr(shownTail.size()));
    shownTail = tail;
    if (screen.isBell)
        Beep();
    screen.done.clear();
    screen.isCleared = screen.isBell = false;
}

} // namespace

int T166_GetPage()
{
    int page = TRM_PAGE_LATIN_1;
    GetCtrlVal(PANEL, TERM_PAGE, &page);
    return page;
}

std::string T166_ShowText(const std::string &taken, const std::string &received)
{
    // Echoed is what the target has, not what was typed. Of CR LF one end of a line is seen; the
    // two may come in two steps.
    int isEchoWanted = 0;
    GetCtrlVal(PANEL, TERM_ECHO, &isEchoWanted);
    for (const char c : taken) {
        const bool isSecond = c == '\n' && lastEcho == '\r';
        if (isEchoWanted != 0 && !isSecond)
            TRM_PutOnScreen(&screen, T166_GetPage(), std::string(1, c == '\r' ? '\n' : c));
        lastEcho = c;
    }
    TRM_PutOnScreen(&screen, T166_GetPage(), received);
    const std::string trouble = LogLines();
    ShowScreen();
    return trouble;
}

void T166_ClearText()
{
    // The line that is still open goes, too; a log that runs goes on.
    screen = TRM_Screen();
    screen.isCleared = true;
    ShowScreen();
}

int T166_EndLog()
{
    std::string trouble;
    return TRM_PutLogLine(&logFile, shownTail, &trouble) != 0 || TRM_CloseLog(&logFile) != 0 ? -1
                                                                                             : 0;
}

std::string T166_GetLogPath()
{
    return logFile.path;
}

std::string T166_BeginLog(const std::string &path)
{
    std::string trouble;
    return TRM_OpenLog(&logFile, path, &trouble) != 0 ? trouble : "";
}

void T166_ShowLog()
{
    SetCtrlVal(PANEL, TERM_LOG, logFile.file != nullptr ? 1 : 0);
}
