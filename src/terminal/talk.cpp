// A conversation from its beginning to its end, within one call.
#include "terminal/service.h"

#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "terminal/code_pages.h"
#include "terminal/screen.h"

bool TRM_isWithoutWindow = false;

int TRM_Talk(const std::string &text, void (*print)(const std::string &line), std::string *trouble)
{
    // So long the target may think about its answer; and so long somebody waits at most.
    constexpr uint32_t QUIET_MS = 1000, WHOLE_MS = 10000, STEP_MS = 20;
    TRM_BlockPlace place;
    trouble->clear();
    if (TRM_FindBlockPlace(TRM_SERVICE_NAME, STATION, &place, trouble) != 0)
        return -1;
    std::string bytes;
    if (TRM_FromUtf8(TRM_PAGE_LATIN_1, text, &bytes) > 0) {
        *trouble = "The text has characters that cannot be sent.";
        return -1;
    }
    TRM_ServiceSession talk;
    TRM_ServiceNews news;
    TRM_Screen screen;
    TRM_BeginService(&talk, place);
    const uint32_t startMs = PLT_TickMs();
    uint32_t heardMs = startMs;
    bool isSent = text.empty();
    do {
        TRM_StepService(&talk, &news);
        TRM_PutOnScreen(&screen, TRM_PAGE_LATIN_1, news.received);
        for (const std::string &line : screen.done)
            print(line);
        screen.done.clear();
        if (news.isLineBad || (!talk.isOpen && !news.message.empty()))
            break;
        if (!news.message.empty())
            print("(" + news.message + ")");
        if (!isSent && talk.isOpen) // what was written before is not the answer, but comes first
            isSent = TRM_AddToSender(&talk.sender, bytes);
        if (!news.received.empty() || TRM_IsServiceBusy(talk))
            heardMs = PLT_TickMs();
        else
            PLT_SleepMs(STEP_MS);
    } while (PLT_TickMs() - heardMs < QUIET_MS && PLT_TickMs() - startMs < WHOLE_MS &&
             !IsBreakWished());
    if (!screen.line.empty())
        print(TRM_GetScreenLine(screen));
    if (news.isLineBad || !talk.isOpen)
        *trouble = news.message.empty() ? "The terminal's block never stood still." : news.message;
    else if (!isSent || !talk.sender.waiting.empty())
        *trouble = "The target did not take all of it.";
    return trouble->empty() ? 0 : -1;
}
