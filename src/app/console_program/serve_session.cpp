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
    CPG_Json id;
    std::vector<int> items;
    uint32_t periodMs = 0;
    uint32_t dueMs = 0; // tick of the next reading
};
std::vector<Watch> watches;

// A request to read that waits for its proof: clients that send several at once share one.
struct HeldRead {
    CPG_Json id;
    std::vector<int> items;
};
std::vector<HeldRead> heldReads;
uint32_t heldSinceMs = 0;
uint32_t startMs = 0;
bool isOutputLost = false;
bool isEnded = false;

void WriteLine(const CPG_Json &message)
{
    // Names and texts of a target need not be UTF-8.
    const std::string line =
        message.dump(-1, ' ', false, CPG_Json::error_handler_t::replace) + "\n";
    std::fwrite(line.data(), 1, line.size(), stdout);
}

void Flush()
{
    if (std::fflush(stdout) != 0)
        isOutputLost = true;
}

void Send(const CPG_Json &message)
{
    WriteLine(message);
    Flush();
}

// The link, open while a request or a watch reads.
bool HoldLink(CPG_Json *error)
{
    if (UCM_IsOpened() && UCM_IsGone())
        CON_DropLink(); // plugged in again, it is opened anew
    if (CON_HoldLink(LINK_NO_QUESTION) == 0)
        return true;
    *error = CPG_MakeServeError("port",
                                UCM_PortName(ncom) + " cannot be opened: " + UCM_LastErrorText());
    return false;
}

CPG_Json DescribeValues(const std::vector<int> &items)
{
    CPG_Json values = CPG_Json::array();
    for (const int index : items)
        values.push_back(CPG_DescribeValue(index));
    return values;
}

// Proves and answers what was read, in the order of the requests.
void AnswerHeldReads()
{
    if (heldReads.empty())
        return;
    RFR_ProveSweep();
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
        if (readValues(index) == RFR_BROKEN_OFF) {
            aLItems[index].isValueGood = false;
            aLItems[index].reason = RFR_CANCELLED;
        }
}

// Places of "item" or of "items"; false with *error.
bool FindItems(const CPG_Json &request, std::vector<int> *items, CPG_Json *error)
{
    CPG_Json wanted = request.value("items", CPG_Json());
    if (!wanted.is_array())
        wanted = request.contains("item") ? CPG_Json::array({request["item"]}) : CPG_Json::array();
    if (wanted.empty() || wanted.size() > static_cast<size_t>(LITEMS_MAX)) {
        *error =
            CPG_MakeServeError("bad-request", "item or items is missing, or there are too many");
        return false;
    }
    // All before any: giving up places would move those that were found already.
    const bool isRoomShort = nLItems + static_cast<int>(wanted.size()) > LITEMS_MAX;
    if (isRoomShort && watches.empty()) {
        AnswerHeldReads();
        CPG_ForgetServeItems();
    }
    for (const CPG_Json &item : wanted) {
        items->push_back(CPG_FindServeItem(item, true, error));
        if (items->back() < 0)
            return false;
    }
    return true;
}

// --- requests: false with *error, else the answer's own members in *answer ----------------

bool Resolve(const CPG_Json &request, CPG_Json *answer, CPG_Json *error)
{
    std::vector<int> items;
    if (!FindItems(request, &items, error))
        return false;
    for (const int index : items)
        (*answer)["items"].push_back(CPG_DescribePlace(index));
    return true;
}

bool Read(const CPG_Json &request, CPG_Json *, CPG_Json *error)
{
    HeldRead held;
    if (!FindItems(request, &held.items, error) || (heldReads.empty() && !HoldLink(error)))
        return false;
    ReadUnproven(held.items);
    heldSinceMs = heldReads.empty() ? PLT_TickMs() : heldSinceMs;
    held.id = request.value("id", CPG_Json());
    heldReads.push_back(held);
    if (heldReads.size() == READS_HELD_MAX || PLT_TickMs() - heldSinceMs >= HELD_MAX_MS)
        AnswerHeldReads();
    return true;
}

const char *WriteErrorCode(int result)
{
    switch (result) {
    case VAL_WRITE_DIFFERENT:
        return "differs";
    case VAL_WRITE_ERR_TEXT:
        return "bad-value";
    case VAL_WRITE_ERR_RANGE:
        return "out-of-range";
    case VAL_WRITE_ERR_ADDRESS:
        return "not-resolved";
    case VAL_WRITE_ERR_READ_BACK:
        return "not-read-back";
    default:
        return "write-failed";
    }
}

bool Write(const CPG_Json &request, CPG_Json *answer, CPG_Json *error)
{
    const CPG_Json value = request.value("value", CPG_Json());
    if (!value.is_number() && !value.is_string()) {
        *error = CPG_MakeServeError("bad-request", "value is a number or a text");
        return false;
    }
    std::vector<int> items;
    if (!FindItems(request, &items, error) || !HoldLink(error))
        return false;
    std::string message;
    const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    const int result = VAL_Write(items[0], text, &message);
    CON_ReleaseLink();
    if (result == VAL_WRITE_OK)
        (*answer)["values"] = CPG_Json::array({CPG_DescribeValue(items[0])});
    else
        *error = CPG_MakeServeError(WriteErrorCode(result), message);
    return result == VAL_WRITE_OK;
}

bool StartWatch(const CPG_Json &request, CPG_Json *answer, CPG_Json *error)
{
    const CPG_Json period = request.value("period", CPG_Json(1000));
    Watch watch;
    if (!period.is_number_integer() || period < PERIOD_MIN_MS || period > PERIOD_MAX_MS)
        *error = CPG_MakeServeError("bad-request", "period is 10 to 3600000 milliseconds");
    else if (watches.size() == WATCHES_MAX)
        *error = CPG_MakeServeError("too-many", "8 watches run already");
    else if (FindItems(request, &watch.items, error)) {
        watch.id = request.value("id", CPG_Json());
        watch.periodMs = period.get<uint32_t>();
        watch.dueMs = PLT_TickMs();
        watches.push_back(watch);
        (*answer)["items"] = CPG_Json::array();
        for (const int index : watch.items)
            (*answer)["items"].push_back(CPG_DescribePlace(index));
        return true;
    }
    return false;
}

bool EndWatch(const CPG_Json &request, CPG_Json *, CPG_Json *error)
{
    const CPG_Json id = request.value("watch", CPG_Json());
    for (size_t i = 0; i < watches.size(); i++)
        if (watches[i].id == id) {
            watches.erase(watches.begin() + static_cast<std::ptrdiff_t>(i));
            return true;
        }
    *error = CPG_MakeServeError("bad-request", "no watch has this id");
    return false;
}

// One console line, with what the console would print.
bool RunLine(const CPG_Json &request, CPG_Json *answer, CPG_Json *error)
{
    const CPG_Json line = request.value("line", CPG_Json());
    if (!line.is_string() || line.get<std::string>().find('\n') != std::string::npos) {
        *error = CPG_MakeServeError("bad-request", "line is one line of text");
        return false;
    }
    CON_ClearTextCB(0, 0);
    const int failedBefore = CON_nFailed;
    HL_SetUserVal(consolePanel, CONSOLE_INPUT, line.get<std::string>());
    HL_Key(consolePanel, CONSOLE_INPUT, KEY_ENTER);
    (*answer)["output"] = CON_GetText();
    if (CON_nFailed == failedBefore)
        return true;
    *error = CPG_MakeServeError("line-failed", "the line was refused or failed: see output");
    return false;
}

struct Operation {
    const char *name;
    bool (*run)(const CPG_Json &request, CPG_Json *answer, CPG_Json *error);
};
const Operation OPERATIONS[] = {
    {"hello",
     [](const CPG_Json &, CPG_Json *answer, CPG_Json *) {
         *answer = {{"protocol", PROTOCOL_VERSION}, {"version", VR_GetBuildVersion()}};
         return true;
     }},
    {"resolve", Resolve},
    {"read", Read},
    {"write", Write},
    {"watch", StartWatch},
    {"unwatch", EndWatch},
    {"run", RunLine},
    {"end", [](const CPG_Json &, CPG_Json *, CPG_Json *) { return isEnded = true; }},
};

// --- the loop -------------------------------------------------------------------------------

void Answer(const std::string &line)
{
    const CPG_Json request = CPG_Json::parse(line, nullptr, false);
    CPG_Json error, members = CPG_Json::object();
    bool isGood = false;
    if (request.is_discarded() || !request.is_object())
        error = CPG_MakeServeError("bad-json", "the line is no JSON object");
    else {
        // Reads that came in front of anything else are proven and answered in front of it.
        const CPG_Json wanted = request.value("op", CPG_Json());
        error = CPG_MakeServeError("unknown-op", "no such op");
        if (wanted != "read")
            AnswerHeldReads();
        for (const Operation &operation : OPERATIONS)
            if (wanted == operation.name)
                isGood = operation.run(request, &members, &error);
        if (isGood && wanted == "read")
            return; // answered with its proof
    }
    AnswerHeldReads(); // in the order of the requests
    CPG_Json answer = {{"id", request.is_object() ? request.value("id", CPG_Json()) : CPG_Json()},
                       {"ok", isGood}};
    answer.update(members);
    if (!isGood)
        answer["error"] = error;
    Send(answer);
}

void RunWatch(Watch *watch)
{
    AnswerHeldReads();
    CPG_Json event = {{"event", "values"}, {"watch", watch->id}};
    CPG_Json error;
    if (HoldLink(&error)) {
        ReadUnproven(watch->items);
        RFR_ProveSweep();
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
    CPG_ForgetServeItems(); // the list of the settings is not the client's
    startMs = PLT_TickMs();
    CPG_StartServeInput();
    CON_BeginScript(); // the link stays open from request to request
    std::string line;
    int kind = CPG_SERVE_NONE;
    while (!HL_IsQuit() && !isEnded && !isOutputLost && kind != CPG_SERVE_END) {
        ProcessSystemEvents();
        const unsigned wait = RunDueWatches();
        kind = CPG_GetServeLine(heldReads.empty() ? wait : 0, &line);
        if (kind != CPG_SERVE_LINE)
            AnswerHeldReads();
        if (kind == CPG_SERVE_LINE)
            Answer(line);
        else if (kind == CPG_SERVE_TOO_LONG)
            Send({{"id", nullptr},
                  {"ok", false},
                  {"error", CPG_MakeServeError("too-long", "a request has at most 65536 bytes")}});
    }
    AnswerHeldReads();
    CON_EndScript();
    CPG_ForgetServeItems();
    CON_nFailed = 0; // each has been answered for
    if (!HL_IsQuit())
        ExitApplication(mainPanel);
    if (isOutputLost)
        std::fprintf(stderr, "The client does not read any more.\n");
    return isOutputLost ? 1 : 0;
}
