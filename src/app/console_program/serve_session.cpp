// --serve: requests and answers as JSON, one a line, for programs that drive this one. One
// client, one request at a time, in order. docs/manual/reference/formats.md describes them for the
// client.
#include <algorithm>
#include <cstdio>
#include <vector>

#include "app/console_program/serve_input.h"
#include "app/console_program/serve_items.h"
#include "app/console_program/sessions.h"
#include "app/startup.h"
#include "app/version.h"
#include "comm/ucm.h"
#include "console/monitor/link.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "platform/system.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/list/litem.h"
#include "watch/list/read_item.h"
#include "watch/value/write_value.h"

namespace {

constexpr int PROTOCOL_VERSION = 1;
constexpr size_t WATCHES_MAX = 8;
constexpr int PERIOD_MIN_MS = 10, PERIOD_MAX_MS = 3600000;
constexpr unsigned IDLE_MS = 50;      // how soon a signal is noticed while no request comes
constexpr size_t READS_HELD_MAX = 32; // requests with one proof behind them,
constexpr uint32_t HELD_MAX_MS = 20;  // and how long the first of them waits for the others

struct Watch {
    SRV_Json id;
    std::vector<int> items;
    uint32_t periodMs = 0;
    uint32_t dueMs = 0; // tick of the next reading
};
std::vector<Watch> watches;

// A request to read that waits for its proof: clients that send several at once share one.
struct HeldRead {
    SRV_Json id;
    std::vector<int> items;
};
std::vector<HeldRead> heldReads;
uint32_t heldSinceMs = 0;
uint32_t startMs = 0;
bool isOutputLost = false;
bool isEnded = false;

void WriteLine(const SRV_Json &message)
{
    // Names and texts of a target need not be UTF-8.
    const std::string line =
        message.dump(-1, ' ', false, SRV_Json::error_handler_t::replace) + "\n";
    std::fwrite(line.data(), 1, line.size(), stdout);
}

void Flush()
{
    if (std::fflush(stdout) != 0)
        isOutputLost = true;
}

void Send(const SRV_Json &message)
{
    WriteLine(message);
    Flush();
}

// The link, open while a request or a watch reads.
bool HoldLink(SRV_Json *error)
{
    if (UCM_IsOpened() && UCM_IsGone())
        CON_DropLink(); // plugged in again, it is opened anew
    if (CON_HoldLink(LINK_NO_QUESTION) == 0)
        return true;
    *error = SRV_Error("port", UCM_PortName(ncom) + " cannot be opened: " + UCM_LastErrorText());
    return false;
}

SRV_Json DescribeValues(const std::vector<int> &items)
{
    SRV_Json values = SRV_Json::array();
    for (const int index : items)
        values.push_back(SRV_DescribeValue(index));
    return values;
}

// Proves and answers what was read, in the order of the requests.
void AnswerHeldReads()
{
    if (heldReads.empty())
        return;
    RDI_Prove();
    CON_ReleaseLink();
    for (const HeldRead &held : heldReads)
        WriteLine({{"id", held.id}, {"ok", true}, {"values", DescribeValues(held.items)}});
    Flush();
    heldReads.clear();
}

// Proven later. What an earlier request read is no answer to one that was broken off.
void ReadUnproven(const std::vector<int> &items)
{
    for (const int index : items)
        if (readValues(index) == RDI_BROKEN_OFF) {
            aLItems[index].isValueGood = false;
            aLItems[index].reason = RDI_CANCELLED;
        }
}

// Places of "item" or of "items"; false with *error.
bool FindItems(const SRV_Json &request, std::vector<int> *items, SRV_Json *error)
{
    SRV_Json wanted = request.value("items", SRV_Json());
    if (!wanted.is_array())
        wanted = request.contains("item") ? SRV_Json::array({request["item"]}) : SRV_Json::array();
    if (wanted.empty() || wanted.size() > static_cast<size_t>(LITEMS_MAX)) {
        *error = SRV_Error("bad-request", "item or items is missing, or there are too many");
        return false;
    }
    // All before any: giving up places would move those that were found already.
    const bool isRoomShort = nLItems + static_cast<int>(wanted.size()) > LITEMS_MAX;
    if (isRoomShort && watches.empty()) {
        AnswerHeldReads();
        SRV_ForgetItems();
    }
    for (const SRV_Json &item : wanted) {
        items->push_back(SRV_FindItem(item, true, error));
        if (items->back() < 0)
            return false;
    }
    return true;
}

// --- requests: false with *error, else the answer's own members in *answer ----------------

bool Resolve(const SRV_Json &request, SRV_Json *answer, SRV_Json *error)
{
    std::vector<int> items;
    if (!FindItems(request, &items, error))
        return false;
    for (const int index : items)
        (*answer)["items"].push_back(SRV_DescribePlace(index));
    return true;
}

bool Read(const SRV_Json &request, SRV_Json *, SRV_Json *error)
{
    HeldRead held;
    if (!FindItems(request, &held.items, error) || (heldReads.empty() && !HoldLink(error)))
        return false;
    ReadUnproven(held.items);
    heldSinceMs = heldReads.empty() ? PLT_TickMs() : heldSinceMs;
    held.id = request.value("id", SRV_Json());
    heldReads.push_back(held);
    if (heldReads.size() == READS_HELD_MAX || PLT_TickMs() - heldSinceMs >= HELD_MAX_MS)
        AnswerHeldReads();
    return true;
}

const char *WriteErrorCode(int result)
{
    switch (result) {
    case WRV_DIFFERENT:
        return "differs";
    case WRV_ERR_TEXT:
        return "bad-value";
    case WRV_ERR_RANGE:
        return "out-of-range";
    case WRV_ERR_ADDRESS:
        return "not-resolved";
    case WRV_ERR_READ_BACK:
        return "not-read-back";
    default:
        return "write-failed";
    }
}

bool Write(const SRV_Json &request, SRV_Json *answer, SRV_Json *error)
{
    const SRV_Json value = request.value("value", SRV_Json());
    if (!value.is_number() && !value.is_string()) {
        *error = SRV_Error("bad-request", "value is a number or a text");
        return false;
    }
    std::vector<int> items;
    if (!FindItems(request, &items, error) || !HoldLink(error))
        return false;
    std::string message;
    const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    const int result = WRV_Write(items[0], text, &message);
    CON_ReleaseLink();
    if (result == WRV_OK)
        (*answer)["values"] = SRV_Json::array({SRV_DescribeValue(items[0])});
    else
        *error = SRV_Error(WriteErrorCode(result), message);
    return result == WRV_OK;
}

bool StartWatch(const SRV_Json &request, SRV_Json *answer, SRV_Json *error)
{
    const SRV_Json period = request.value("period", SRV_Json(1000));
    Watch watch;
    if (!period.is_number_integer() || period < PERIOD_MIN_MS || period > PERIOD_MAX_MS)
        *error = SRV_Error("bad-request", "period is 10 to 3600000 milliseconds");
    else if (watches.size() == WATCHES_MAX)
        *error = SRV_Error("too-many", "8 watches run already");
    else if (FindItems(request, &watch.items, error)) {
        watch.id = request.value("id", SRV_Json());
        watch.periodMs = period.get<uint32_t>();
        watch.dueMs = PLT_TickMs();
        watches.push_back(watch);
        (*answer)["items"] = SRV_Json::array();
        for (const int index : watch.items)
            (*answer)["items"].push_back(SRV_DescribePlace(index));
        return true;
    }
    return false;
}

bool EndWatch(const SRV_Json &request, SRV_Json *, SRV_Json *error)
{
    const SRV_Json id = request.value("watch", SRV_Json());
    for (size_t i = 0; i < watches.size(); i++)
        if (watches[i].id == id) {
            watches.erase(watches.begin() + static_cast<std::ptrdiff_t>(i));
            return true;
        }
    *error = SRV_Error("bad-request", "no watch has this id");
    return false;
}

// One console line, with what the console would print.
bool RunLine(const SRV_Json &request, SRV_Json *answer, SRV_Json *error)
{
    const SRV_Json line = request.value("line", SRV_Json());
    if (!line.is_string() || line.get<std::string>().find('\n') != std::string::npos) {
        *error = SRV_Error("bad-request", "line is one line of text");
        return false;
    }
    CON_ClearTextCB(0, 0);
    const int failedBefore = CON_nFailed;
    HL_SetUserVal(consolePanel, CONSOLE_INPUT, line.get<std::string>());
    HL_Key(consolePanel, CONSOLE_INPUT, KEY_ENTER);
    (*answer)["output"] = CON_GetText();
    if (CON_nFailed == failedBefore)
        return true;
    *error = SRV_Error("line-failed", "the line was refused or failed: see output");
    return false;
}

struct Operation {
    const char *name;
    bool (*run)(const SRV_Json &request, SRV_Json *answer, SRV_Json *error);
};
const Operation OPERATIONS[] = {
    {"hello",
     [](const SRV_Json &, SRV_Json *answer, SRV_Json *) {
         *answer = {{"protocol", PROTOCOL_VERSION}, {"version", VR_GetBuildVersion()}};
         return true;
     }},
    {"resolve", Resolve},
    {"read", Read},
    {"write", Write},
    {"watch", StartWatch},
    {"unwatch", EndWatch},
    {"run", RunLine},
    {"end", [](const SRV_Json &, SRV_Json *, SRV_Json *) { return isEnded = true; }},
};

// --- the loop -------------------------------------------------------------------------------

void Answer(const std::string &line)
{
    const SRV_Json request = SRV_Json::parse(line, nullptr, false);
    SRV_Json error, members = SRV_Json::object();
    bool isGood = false;
    if (request.is_discarded() || !request.is_object())
        error = SRV_Error("bad-json", "the line is no JSON object");
    else {
        // Reads that came in front of anything else are proven and answered in front of it.
        const SRV_Json wanted = request.value("op", SRV_Json());
        error = SRV_Error("unknown-op", "no such op");
        if (wanted != "read")
            AnswerHeldReads();
        for (const Operation &operation : OPERATIONS)
            if (wanted == operation.name)
                isGood = operation.run(request, &members, &error);
        if (isGood && wanted == "read")
            return; // answered with its proof
    }
    AnswerHeldReads(); // in the order of the requests
    SRV_Json answer = {{"id", request.is_object() ? request.value("id", SRV_Json()) : SRV_Json()},
                       {"ok", isGood}};
    answer.update(members);
    if (!isGood)
        answer["error"] = error;
    Send(answer);
}

void RunWatch(Watch *watch)
{
    AnswerHeldReads();
    SRV_Json event = {{"event", "values"}, {"watch", watch->id}};
    SRV_Json error;
    if (HoldLink(&error)) {
        ReadUnproven(watch->items);
        RDI_Prove();
        event["values"] = DescribeValues(watch->items);
        CON_ReleaseLink();
    } else {
        event["error"] = error;
    }
    event["time"] = (PLT_TickMs() - startMs) / 1000.0;
    Send(event);
    // Readings that could not be made in time are left out, not made up for.
    const uint32_t now = PLT_TickMs();
    watch->dueMs += watch->periodMs;
    if (static_cast<int32_t>(now - watch->dueMs) > 0)
        watch->dueMs = now;
}

// Milliseconds until a watch is due, at most IDLE_MS.
unsigned RunDueWatches()
{
    unsigned wait = IDLE_MS;
    for (Watch &watch : watches) {
        if (static_cast<int32_t>(PLT_TickMs() - watch.dueMs) >= 0)
            RunWatch(&watch);
        const int32_t left = static_cast<int32_t>(watch.dueMs - PLT_TickMs());
        wait = left <= 0 ? 0 : std::min(wait, static_cast<unsigned>(left));
    }
    return wait;
}

} // namespace

int CPG_RunServe()
{
    SRV_ForgetItems(); // the list of the settings is not the client's
    startMs = PLT_TickMs();
    SRI_Start();
    CON_BeginScript(); // the link stays open from request to request
    std::string line;
    int kind = SRI_NONE;
    while (!HL_IsQuit() && !isEnded && !isOutputLost && kind != SRI_END) {
        ProcessSystemEvents();
        const unsigned wait = RunDueWatches();
        kind = SRI_Next(heldReads.empty() ? wait : 0, &line);
        if (kind != SRI_LINE)
            AnswerHeldReads();
        if (kind == SRI_LINE)
            Answer(line);
        else if (kind == SRI_TOO_LONG)
            Send({{"id", nullptr},
                  {"ok", false},
                  {"error", SRV_Error("too-long", "a request has at most 65536 bytes")}});
    }
    AnswerHeldReads();
    CON_EndScript();
    SRV_ForgetItems();
    CON_nFailed = 0; // each has been answered for
    if (!HL_IsQuit())
        ExitApplication(mainPanel);
    if (isOutputLost)
        std::fprintf(stderr, "The client does not read any more.\n");
    return isOutputLost ? 1 : 0;
}
