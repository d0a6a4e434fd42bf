// The service terminal as a command: its window, or a line for the target and its answer.
#include "console/commands/commands.h"
#include "console/monitor/link.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "terminal/service.h"
#include "terminal/window.h"
#include "text/tokens.h"

namespace {

constexpr char LINE_END = '\r';

} // namespace

// term166 [text]. Quotation marks around the text keep its blanks; "" is an empty line.
int SCR_Term166(ScrPar *par)
{
    const char *cursor = TXT_SkipBlanks(par->text);
    std::string text = TXT_SkipBlanks(cursor + TXT_NameLength(cursor));
    if (text.empty() && !TRM_isWithoutWindow) {
        T166_Init();
        return 0;
    }
    const bool isLine = !text.empty();
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = text.substr(1, text.size() - 2);
    // Two readers of one answer would each get a part of it.
    if (T166_IsOn())
        return SCR_Fail("term166: The terminal's window is open.");
    if (CON_HoldLink(LINK_NO_QUESTION) < 0)
        return -1;
    std::string problem;
    // Without a text only what the target says by itself is shown.
    const auto print = [](const std::string &line) { CON_Print(" %s", line.c_str()); };
    const int result = TRM_Talk(isLine ? text + LINE_END : "", print, &problem);
    CON_ReleaseLink();
    return result == 0 ? 0 : SCR_Fail("term166: " + problem);
}
