#include "access.h"

#include "demo.h"
#include "scope.h"
#include "terminal.h"

void SIM_ReadTarget(SIM_Target *target, int number, uint32_t address, void *bytes, size_t count)
{
    SIM_Station &station = target->stations[number];
    if (target->options.demo) {
        // A scope steps the variables through the time that has passed, so they are brought up to
        // now behind it, and the terminals show them last.
        const double now = SIM_Elapsed(target);
        SIM_UpdateScopes(&station, number, now, address, count);
        SIM_UpdateDemo(&station, number, now, address, count);
        SIM_UpdateTerminals(&station, number, now, address, count);
    }
    SIM_ReadMemory(station, address, bytes, count);
}

void SIM_WriteTarget(SIM_Target *target, int number, uint32_t address, const void *bytes,
                     size_t count)
{
    SIM_Station &station = target->stations[number];
    // A scope samples up to now as it was set before.
    if (target->options.demo)
        SIM_UpdateScopes(&station, number, SIM_Elapsed(target), address, count);
    SIM_WriteMemory(&station, address, bytes, count);
    if (target->options.demo)
        SIM_UpdateTerminals(&station, number, SIM_Elapsed(target), address, count);
    // A TMS320 that does not answer leaves the command standing.
    if (!target->options.mailbox || !SIM_TouchesMailbox(address, count))
        return;
    if (target->options.demo)
        SIM_UpdateDemoTms(&station, number, SIM_Elapsed(target));
    SIM_ServeMailbox(&station);
}
