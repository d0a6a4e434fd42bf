#include "access.h"

#include "demo.h"

void SIM_ReadTarget(SIM_Target *target, int number, uint32_t address, void *bytes, size_t count)
{
    SIM_Station &station = target->stations[number];
    if (target->options.demo)
        SIM_UpdateDemo(&station, number, SIM_Elapsed(target), address, count);
    SIM_ReadMemory(station, address, bytes, count);
}

void SIM_WriteTarget(SIM_Target *target, int number, uint32_t address, const void *bytes,
                     size_t count)
{
    SIM_Station &station = target->stations[number];
    SIM_WriteMemory(&station, address, bytes, count);
    if (!target->options.mailbox || !SIM_TouchesMailbox(address, count))
        return;
    if (target->options.demo)
        SIM_UpdateDemoTms(&station, number, SIM_Elapsed(target));
    SIM_ServeMailbox(&station);
}
