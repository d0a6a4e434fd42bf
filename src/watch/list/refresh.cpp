// A tick reads one item, or one block of neighbours, and the sweep ends with the last line in
// view: there the line is proven, and everything is drawn at once.
#include "watch/list/refresh.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "comm/communication.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/list/age.h"
#include "watch/list/freq_meter.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/read_item.h"
#include "watch/main_window.h"
#include "watch/windows/mem_box.h"
#include "watch/windows/memory_panel.h"
#include "watch/windows/value_panel.h"

int UpdItem = 0;
int eTMS = 0;
int nErrors = 0;

namespace {

constexpr double IDLE_PERIOD_S = 1.0, TERMINAL_PERIOD_S = 0.05; // without a list
constexpr uint32_t RECORD_PERIOD_MS = 1000;
constexpr double SHORTEST_PERIOD_S = 0.001;
constexpr uint32_t PAUSE_MIN_MS = 3000; // without a tick: the console view, a long script
constexpr int ERRORS_MAX = 3;           // more failed reads without a good sweep switch off

struct StatusRow {
    int state; // of eTMS
    const char *text;
    int color;
};
const StatusRow statusRows[] = {
    {-2, "Error TMS", 0xFFAA00},
    {-1, "Error", 0xFF0000},
    {0, "RUN", 0x008000},
};

std::string lastFailure; // which item failed last and why, for the message of auto-off
bool isAnyGood = false;  // of this sweep's reads
uint32_t lastTickMs = 0;

void ShowStatus(int state)
{
    for (const StatusRow &row : statusRows) {
        if (row.state != state)
            continue;
        SetCtrlVal(mainPanel, MAIN_STATUS, row.text);
        SetCtrlAttribute(mainPanel, MAIN_STATUS, ATTR_TEXT_COLOR, row.color);
    }
}

// A failed read shows at this very moment, with its reason and in the status.
void NoteFailure(int index, int result)
{
    if (result != -2)
        eTMS = -1;
    else if (eTMS != -1)
        eTMS = -2;
    ++nErrors;
    ShowStatus(eTMS); // in the middle of the sweep, too
    if (result != -4)
        lastFailure = LIT_Label(aLItems[index]) + ": " + aLItems[index].reason;
}

// At the faster rates neighbours are read together: the blocks of this sweep, and which of
// them have been read.
std::vector<std::vector<int>> blocks;
std::vector<bool> isBlockRead;

// The block with this item, or blocks.size().
size_t BlockOf(int index)
{
    size_t i = 0;
    while (i < blocks.size() &&
           std::find(blocks[i].begin(), blocks[i].end(), index) == blocks[i].end())
        ++i;
    return i;
}

bool IsReadInSweep(int index)
{
    const size_t block = BlockOf(index);
    return block < blocks.size() && isBlockRead[block];
}

// One request counts as one failure, however many items it was for.
void ReadBlock(size_t block)
{
    isBlockRead[block] = true;
    bool isNoted = false;
    RFR_ReadItemBlock(blocks[block]);
    for (const int index : blocks[block]) {
        isAnyGood = isAnyGood || aLItems[index].isHeld;
        if (aLItems[index].isHeld)
            continue;
        LSV_ShowLine(index);
        if (!isNoted)
            NoteFailure(index, -1);
        isNoted = true;
    }
}

void ReadItem(int index)
{
    // A block is read with its first item; at the others the tick has nothing to ask.
    const size_t block = BlockOf(index);
    if (block < blocks.size() && blocks[block].size() > 1) {
        if (!isBlockRead[block])
            ReadBlock(block);
        return;
    }
    const int result = readValues(index);
    if (result == 0) {
        isAnyGood = true;
        return;
    }
    if (result == RFR_BROKEN_OFF)
        return;
    if (result != -4)
        LSV_ShowLine(index);
    // A name that no map knows is not the link's fault.
    if (result == -4 || aLItems[index].address != LITEM_NO_ADDRESS)
        NoteFailure(index, result);
}

int ResultOf(int index)
{
    return LIT_IsTMS(aLItems[index]) ? -2 : -1;
}

void EndSweep()
{
    RFR_EndAgeSweep(); // what is proven now is of this moment
    for (const int index : RFR_ProveSweep())
        NoteFailure(index, ResultOf(index));
    // A line in view may have failed for another reader (the value window) since it was read
    // here. No "RUN" stands beside it.
    const int first = LSV_FirstVisible(), end = std::min(first + LSV_LinesInView(), nLItems);
    for (int i = first; i < end && eTMS == 0; ++i)
        if (aLItems[i].readError && aLItems[i].address != LITEM_NO_ADDRESS)
            NoteFailure(i, ResultOf(i));
    // Names that nobody knows turn the status to "Error" once nothing else was read either.
    if (eTMS == 0 && isAnyGood) {
        ShowStatus(0);
        nErrors = 0;
    } else {
        ShowStatus(eTMS == 0 ? -1 : eTMS);
        if (eTMS == -1 && Option_AutoOff)
            VR_AutoOff(lastFailure);
    }
    LSV_ShowValues();
    VR_EnableControls();
}

RFR_Recorder recorder;
uint32_t recordedMs = 0;

void ServeRecorder()
{
    const uint32_t nowMs = PLT_TickMs();
    if (recorder.tick != nullptr)
        recorder.tick();
    if (VR_enAppMode == MODE_CONFIGURATION || nowMs - recordedMs < RECORD_PERIOD_MS)
        return;
    recordedMs = nowMs;
    if (recorder.record != nullptr)
        recorder.record();
}

// Nothing was read while the ticks did not come, and no sweep was counted.
void NoticePause()
{
    const uint32_t sweepMs = static_cast<uint32_t>(1000 * RFR_Period() * LSV_LinesInView());
    const uint32_t pauseMs = PLT_TickMs() - lastTickMs;
    if (pauseMs <= std::max(RFR_AGE_SWEEPS_MAX * sweepMs, PAUSE_MIN_MS) || !readLItems)
        return;
    RFR_EndAgeRun();
    LSV_ShowValues();
    WIN_ShowMemoryBoxOld();
}

} // namespace

bool RFR_IsRate(int rate)
{
    return std::find(std::begin(RFR_RATES), std::end(RFR_RATES), rate) != std::end(RFR_RATES);
}

void RFR_SetRecorder(const RFR_Recorder &wanted)
{
    recorder = wanted;
}

double RFR_Period()
{
    if (Option_nSweepRate == 0)
        return SHORTEST_PERIOD_S;
    return std::max(1.0 / (LSV_LinesInView() * Option_nSweepRate), SHORTEST_PERIOD_S);
}

void RFR_BeginSweep()
{
    UpdItem = 0;
    eTMS = 0;
    isAnyGood = false;
    RFR_DropHeld();
}

void RFR_ShowCommunication()
{
    SetCtrlVal(mainPanel, MAIN_STOPPED, isTimer == 0);
    SetCtrlAttribute(mainPanel, MAIN_STOPPED, ATTR_VISIBLE, isTimer == 0);
    SetCtrlAttribute(mainPanel, MAIN_STATUS, ATTR_VISIBLE, isTimer != 0);
    if (isTimer == 0) { // whatever switched it off, nothing runs and nothing fails now
        SetCtrlVal(mainPanel, MAIN_STATUS, "");
        RFR_DropHeld();
        RFR_EndAgeRun();
    }
    // Also for another station, from which nothing has been read yet.
    if (readLItems)
        LSV_ShowValues();
    WIN_ShowMemoryBoxOld();
    WIN_ShowMemoryOld();
    WIN_RefreshValue();
}

int timerCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    // The device configuration reads when it is told to, and nothing else does beside it.
    if (event != EVENT_TIMER_TICK || !isTimer || VR_enAppMode == MODE_CONFIGURATION)
        return 0;
    NoticePause();
    const bool isTerminal = recorder.terminal != nullptr && recorder.terminal();
    ServeRecorder();
    // At every tick, so that another rate or window holds at once.
    const bool hasList = openLItems || nLItems > 0;
    const double idlePeriod = isTerminal ? TERMINAL_PERIOD_S : IDLE_PERIOD_S;
    SetCtrlAttribute(mainPanel, MAIN_TIMER, ATTR_INTERVAL, hasList ? RFR_Period() : idlePeriod);
    if (!hasList) {
        UpdItem = 0;
        updateListTextBox(0);
    } else {
        if (!readLItems) // another list: half a sweep of the old one says nothing about it
            RFR_BeginSweep();
        const int first = LSV_FirstVisible();
        int index = first + UpdItem;
        if (index >= nLItems || UpdItem >= LSV_LinesInView()) {
            UpdItem = 0;
            index = first;
        }
        if (index == first) { // once a second an item a tick is fast enough
            blocks.clear();
            if (Option_nSweepRate != 1)
                blocks = RFR_PlanItemBlocks(first, std::min(first + LSV_LinesInView(), nLItems));
            isBlockRead.assign(blocks.size(), false);
        }
        // As fast as the line allows, no tick goes by without a request.
        while (Option_nSweepRate == 0 && UpdItem + 1 < LSV_LinesInView() && index + 1 < nLItems &&
               IsReadInSweep(index)) {
            ++UpdItem;
            ++index;
        }
        ++UpdItem;
        updateListTextBox(index);
    }
    lastTickMs = PLT_TickMs();
    return 0;
}

int updateListTextBox(int index)
{
    if (nLItems == 0) {
        LSV_ShowNone();
        SetCtrlVal(mainPanel, MAIN_STATUS, " ");
        return 0;
    }
    const int selected = LSV_Selected();
    ReadItem(index);
    const bool isSweepEnd =
        index == nLItems - 1 || index - LSV_FirstVisible() == LSV_LinesInView() - 1;
    if (isSweepEnd)
        EndSweep();
    readLItems = 1;
    if (isSweepEnd && isTimer) // the sweep's end may have switched communication off
        WIN_UpdateMemoryBox(selected);
    FM_Update(selected);
    // Reads that fail in the middle of a sweep count as well: a dead line of 13 items would
    // otherwise keep the user waiting for 13 time-outs.
    if (nErrors > ERRORS_MAX && Option_AutoOff) {
        nErrors = 0;
        if (isTimer)
            VR_AutoOff(lastFailure);
    }
    nErrors = std::min(nErrors, ERRORS_MAX + 1);
    if (isSweepEnd) {
        eTMS = 0;
        isAnyGood = false;
        if (isTimer)
            VR_FollowPort();
    }
    return 0;
}
