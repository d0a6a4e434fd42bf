// Differences of proven samples are summed until there are as many as the field asks for; the
// time between the first and the last of them, as they were read, gives the frequency.
#include "watch/list/freq_meter.h"

#include <algorithm>
#include <cstdio>

#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/list/age.h"
#include "watch/list/litem.h"

int FM_nPeriod = 0;
uint32_t FM_dwPrevValue = 0;
uint32_t FM_dwDelta = 0;

namespace {

constexpr uint32_t ELAPSED_MIN_MS = 10; // never a division by zero
constexpr int NOTHING = -1;

uint32_t startTick = 0;
// The samples being summed are all of one item, at one place, of one size.
struct Metered {
    int index = NOTHING;
    uint32_t address = 0;
    int32_t size = 0, station = -1;
    bool isTMS = false;
    uint32_t goodReads = 0; // of the last sample
    bool isStarted = false; // there is a sample to compare the next one with
};
Metered metered;

void DimResults(int isDimmed)
{
    SetCtrlAttribute(mainPanel, MAIN_FM_FREQ, ATTR_DIMMED, isDimmed);
    SetCtrlAttribute(mainPanel, MAIN_FM_PERIOD, ATTR_DIMMED, isDimmed);
}

bool IsMeasurable(int selected)
{
    int isOn = 0;
    if (GetCtrlVal(mainPanel, MAIN_FM_SWITCH, &isOn) < 0 || !isOn)
        return false;
    // The value of a failed read is no sample, whichever processor it was asked of.
    return selected >= 0 && selected < nLItems && LIT_HasAddress(aLItems[selected]) &&
           aLItems[selected].isValueGood;
}

void StartInterval(uint32_t now)
{
    FM_nPeriod = 0;
    FM_dwDelta = 0;
    startTick = now;
}

void AddSample(const LItem &item)
{
    // Within the item's own size: a counter that has run over counts on.
    const uint32_t delta = item.value - FM_dwPrevValue;
    if (item.size == 1)
        FM_dwDelta += delta & 0xFF;
    else if (item.size == 2)
        FM_dwDelta += delta & 0xFFFF;
    else if (item.size == 4)
        FM_dwDelta += delta;
    else // eight bytes: only the lower half of a sample is kept
        FM_dwDelta = 0;
    ++FM_nPeriod;
}

void ShowResult(uint32_t now)
{
    const double elapsedMs = std::max(now - startTick, ELAPSED_MIN_MS);
    const double counts = FM_dwDelta * 1000.0;
    char text[40];
    std::snprintf(text, sizeof text, "f = %g Hz", counts / elapsedMs);
    SetCtrlVal(mainPanel, MAIN_FM_FREQ, text);
    std::snprintf(text, sizeof text, "T = %g s", elapsedMs / counts);
    SetCtrlVal(mainPanel, MAIN_FM_PERIOD, text);
}

} // namespace

void FM_Update(int selected)
{
    if (!IsMeasurable(selected)) {
        DimResults(1);
        metered.index = NOTHING;
        return;
    }
    const LItem &item = aLItems[selected];
    // Samples of two variables, or of two places, have no difference.
    const bool isOther = metered.index != selected || metered.address != item.address ||
                         metered.size != item.size || metered.station != LIT_Station(item) ||
                         metered.isTMS != LIT_IsTMS(item);
    if (isOther)
        metered = {selected,        item.address,   item.size, LIT_Station(item),
                   LIT_IsTMS(item), item.goodReads, false};
    // The first sample is the value that is there, unless it is old.
    if (isOther ? RFR_IsOld(item) : metered.goodReads == item.goodReads)
        return;
    metered.goodReads = item.goodReads;
    if (metered.isStarted)
        AddSample(item);
    else
        StartInterval(item.lastReadMs);
    metered.isStarted = true;
    FM_dwPrevValue = item.value;
    DimResults(0);
    int samples = 1;
    GetCtrlVal(mainPanel, MAIN_FM_SAMPLES, &samples);
    if (FM_nPeriod < std::max(samples, 1))
        return;
    ShowResult(item.lastReadMs);
    StartInterval(item.lastReadMs);
}
