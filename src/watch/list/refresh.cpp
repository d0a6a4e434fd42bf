#include "watch/list/refresh.h"

#include <cctype>
#include <cstdlib>

#include "app/VR.h"
#include "comm/sysaddr.h"
#include "runtime/userint.h"
#include "ui/resource.h"
#include "watch/list/freq_meter.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"

int UpdItem = 0;
int eTMS = 0;
int nErrors = 0;
double VR_fRefreshPeriod = 1.0 / SWEEP_LINES;

namespace {

constexpr double IDLE_PERIOD_S = 1.0;
constexpr int ERRORS_MAX = 3; // more failed reads without a good sweep switch off

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

void setPeriod(double seconds)
{
    SetCtrlAttribute(mainPanel, MAIN_TIMER, ATTR_INTERVAL, seconds);
}

// Which item failed last and why, for the message of auto-off.
std::string lastFailure;

void readItem(int index)
{
    const int result = readValues(index);
    if (result == 0 || (result != -4 && !LIT_HasAddress(aLItems[index])))
        return;
    if (result != -2)
        eTMS = -1;
    else if (eTMS != -1)
        eTMS = -2;
    ++nErrors;
    if (result != -4)
        lastFailure = LIT_Label(aLItems[index]) + ": " + aLItems[index].reason;
}

void showStatus()
{
    for (const StatusRow &row : statusRows) {
        if (row.state != eTMS)
            continue;
        SetCtrlVal(mainPanel, MAIN_STATUS, row.text);
        SetCtrlAttribute(mainPanel, MAIN_STATUS, ATTR_TEXT_COLOR, row.color);
    }
    if (eTMS == 0)
        nErrors = 0;
    else if (eTMS == -1 && Option_AutoOff)
        VR_AutoOff(lastFailure);
}

bool memoryBoxAddress(uint32_t *address)
{
    int isOn = 0;
    if (GetCtrlVal(mainPanel, MAIN_MEM_SWITCH, &isOn) < 0 || !isOn)
        return false;
    std::string text;
    GetCtrlVal(mainPanel, MAIN_MEM_ADDR, &text);
    const char *digits = text.c_str();
    while (std::isspace(static_cast<unsigned char>(*digits)))
        ++digits;
    if (!std::isxdigit(static_cast<unsigned char>(*digits)))
        return false;
    const unsigned long long number = std::strtoull(digits, nullptr, 16);
    *address = number > ADDR_LIMIT ? ADDR_LIMIT : static_cast<uint32_t>(number);
    return true;
}

void updateMemoryBox(int selected)
{
    uint32_t address;
    if (!memoryBoxAddress(&address))
        return;
    ResetTextBox(mainPanel, MAIN_MEM_BOX, "");
    ReadMemory(address, selected);
}

void countErrors()
{
    if (nErrors <= ERRORS_MAX)
        return;
    if (!Option_AutoOff) {
        nErrors = ERRORS_MAX + 1;
        return;
    }
    nErrors = 0;
    if (isTimer) // the end of the sweep may have switched off already
        VR_AutoOff(lastFailure);
}

} // namespace

void RFR_BeginSweep()
{
    UpdItem = 0;
    eTMS = 0;
}

int timerCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event != EVENT_TIMER_TICK || !isTimer)
        return 0;
    if (!openLItems && nLItems == 0) {
        setPeriod(IDLE_PERIOD_S);
        UpdItem = 0;
        return updateListTextBox(0);
    }
    setPeriod(VR_fRefreshPeriod);
    if (!readLItems) // another list: half a sweep of the old one says nothing about it
        RFR_BeginSweep();
    const int first = LSV_FirstVisible();
    int index = first + UpdItem;
    if (index >= nLItems || UpdItem >= SWEEP_LINES) {
        UpdItem = 0;
        index = first;
    }
    ++UpdItem;
    return updateListTextBox(index);
}

int updateListTextBox(int index)
{
    if (nLItems == 0) {
        LSV_ShowNone();
        SetCtrlVal(mainPanel, MAIN_STATUS, " ");
        return 0;
    }
    const int selected = LSV_Selected();
    const int first = LSV_FirstVisible();
    readItem(index);
    const bool isSweepEnd = index == nLItems - 1 || index - first == SWEEP_LINES - 1;
    if (isSweepEnd) {
        showStatus();
        LSV_ShowValues();
        VR_EnableControls();
        LSV_Select(selected);
        SetCtrlAttribute(mainPanel, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, first);
    }
    readLItems = 1;
    if (isSweepEnd && isTimer)
        updateMemoryBox(selected);
    FM_Update(index, selected);
    countErrors();
    if (isSweepEnd) {
        eTMS = 0;
        if (isTimer)
            VR_FollowPort();
    }
    return 0;
}
