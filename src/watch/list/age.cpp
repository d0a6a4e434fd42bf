// Sweeps and runs are counted from the program's start; an item remembers those of its last
// good read, so that growing old costs nothing until somebody looks.
#include "watch/list/age.h"

#include <cstdio>

#include "settings/settings.h"
#include "watch/list/litem.h"

namespace {

constexpr uint32_t SECOND_MS = 1000;
constexpr uint32_t MINUTE_S = 60;
constexpr uint32_t HOUR_S = 3600;
constexpr uint32_t STEP_S = 10; // above, whole seconds would be news at every sweep

uint32_t sweep = 0; // both may come round: only differences count
uint32_t run = 0;

} // namespace

void RFR_EndAgeSweep()
{
    ++sweep;
}

void RFR_EndAgeRun()
{
    ++run;
}

void RFR_StampAge(LItem *item, int station)
{
    item->sweepRead = sweep;
    item->runRead = run;
    item->stationRead = station;
    PLT_LocalTime(&item->readAt);
}

bool RFR_IsOld(const LItem &item)
{
    if (!item.isValueGood)
        return false;
    // The station: an item without one of its own now means the selected one's memory.
    return item.runRead != run || item.stationRead != LIT_Station(item) ||
           sweep - item.sweepRead > RFR_AGE_SWEEPS_MAX;
}

std::string RFR_AgeText(const LItem &item)
{
    const uint32_t seconds = (PLT_TickMs() - item.lastReadMs) / SECOND_MS;
    if (seconds < STEP_S)
        return std::to_string(seconds) + " s";
    if (seconds < MINUTE_S)
        return std::to_string(seconds - seconds % STEP_S) + " s";
    if (seconds < HOUR_S)
        return std::to_string(seconds / MINUTE_S) + " min";
    return std::to_string(seconds / HOUR_S) + " h";
}

// Without communication nothing brings the tip up to date: it then names the time only.
std::string RFR_AgeTip(const LItem &item)
{
    if (!RFR_IsOld(item))
        return "";
    char time[40];
    std::snprintf(time, sizeof time, "%02d:%02d:%02d", item.readAt.hour, item.readAt.minute,
                  item.readAt.second);
    std::string tip = std::string("Old: read at ") + time;
    if (item.stationRead != LIT_Station(item))
        tip += " from station " + std::to_string(item.stationRead);
    if (!isTimer)
        return tip + ", before communication was switched off.";
    return tip + ", " + RFR_AgeText(item) + " ago.";
}
