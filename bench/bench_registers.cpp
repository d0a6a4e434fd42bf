// The register view: 200 registers of a C167 refreshed again and again on a paced line, against
// the time that the characters of their cheapest blocks take on the wire.
#include "bench.h"
#include "code/live_reads.h"
#include "code/register_groups.h"
#include "comm/grouping.h"
#include "symbols/varnode.h"

namespace {

constexpr size_t REGISTERS = 200;
constexpr int REFRESHES = 10, ROUNDS = 4;

void Measure(const char *name, int protocol)
{
    SIM_Target *target = BEN_StartLine(protocol, BEN_BAUD);
    CODE_LiveReads wanted;
    for (const CODE_RegisterGroup &group : CODE_GetRegisterGroups())
        for (const CODE_Register &row : group.registers)
            if (!row.isTouchy && wanted.wanted.size() < REGISTERS)
                CODE_WantLive(&wanted, row.address, 2);
    if (wanted.wanted.size() != REGISTERS)
        BEN_Fail("the processor has fewer registers");
    std::vector<UCM_BlockItem> items;
    for (const CODE_LivePiece &piece : wanted.wanted)
        items.push_back({STATION, piece.address, piece.size});
    const UCM_WireCosts wire = UCM_ReadWire(protocol);
    const auto chars = static_cast<double>(
        UCM_CountPlanChars(UCM_PlanBlocks(items, wire, UCM_ReadRules(Procesor)), wire));
    const double seconds = BEN_BestSeconds(ROUNDS, [&] {
        for (int i = 0; i < REFRESHES; ++i) {
            CODE_LiveReads set = wanted;
            std::string cause;
            if (CODE_ReadLive(&set, STATION, &cause) != 0)
                BEN_Fail(cause);
        }
    });
    BEN_PrintWire(name, REFRESHES * BEN_WireSeconds(chars), seconds);
    BEN_StopLine(target);
}

} // namespace

int main()
{
    UCM_Init();
    UCM_UseWin32(1);
    STATION = 1;
    Procesor = CPU_C167;
    initRgMap(Procesor);
    BEN_PrintWireHead("200 registers, ten times");
    Measure("mr166", PROTOCOL_MR166);
    Measure("Modbus", PROTOCOL_MODBUS);
    return 0;
}
