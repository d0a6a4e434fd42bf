#include "watch/list/freq_meter.h"

#include <algorithm>
#include <cstdio>

#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/list/litem.h"

int FM_nPeriod = 0;
uint32_t FM_dwPrevValue = 0;
uint32_t FM_dwDelta = 0;

namespace {

constexpr uint32_t ELAPSED_MIN_MS = 10;
constexpr int NOTHING = -1;

uint32_t startTick = 0;
int meteredIndex = NOTHING; // item whose samples are being summed
uint32_t meteredAddress = 0;
int32_t meteredSize = 0;

void dimResults(int isDimmed)
{
    SetCtrlAttribute(mainPanel, MAIN_FM_FREQ, ATTR_DIMMED, isDimmed);
    SetCtrlAttribute(mainPanel, MAIN_FM_PERIOD, ATTR_DIMMED, isDimmed);
}

bool isMeasurable(int selected)
{
    int isOn = 0;
    if (GetCtrlVal(mainPanel, MAIN_FM_SWITCH, &isOn) < 0 || !isOn)
        return false;
    // The value of a failed read is no sample, whichever processor it was asked of.
    return selected >= 0 && selected < nLItems && LIT_HasAddress(aLItems[selected]) &&
           !aLItems[selected].readError;
}

void startInterval(uint32_t now)
{
    FM_nPeriod = 0;
    FM_dwDelta = 0;
    startTick = now;
}

void addSample(const LItem &item)
{
    const uint32_t delta = item.value - FM_dwPrevValue;
    if (item.size == 1)
        FM_dwDelta += delta & 0xFF;
    else if (item.size == 2)
        FM_dwDelta += delta & 0xFFFF;
    else if (item.size == 4)
        FM_dwDelta += delta;
    else
        FM_dwDelta = 0;
    ++FM_nPeriod;
}

void showResult(uint32_t now)
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

void FM_Update(int index, int selected)
{
    if (!isMeasurable(selected)) {
        dimResults(1);
        meteredIndex = NOTHING;
        return;
    }
    if (index != selected)
        return;
    const LItem &item = aLItems[index];
    const uint32_t now = PLT_TickMs();
    if (meteredIndex != index || meteredAddress != item.address || meteredSize != item.size) {
        // The first sample only sets the start: there is nothing to compare it with.
        meteredIndex = index;
        meteredAddress = item.address;
        meteredSize = item.size;
        startInterval(now);
    } else {
        addSample(item);
    }
    FM_dwPrevValue = item.value;
    dimResults(0);
    int samples = 1;
    GetCtrlVal(mainPanel, MAIN_FM_SAMPLES, &samples);
    if (FM_nPeriod < std::max(samples, 1))
        return;
    showResult(now);
    startInterval(now);
}
