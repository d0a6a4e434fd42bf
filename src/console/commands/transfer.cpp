// One loop for both directions: it knows the blocks and the meter, its caller the data.
#include "console/commands/transfer.h"

#include <algorithm>
#include <vector>

#include "comm/ucm.h"
#include "console/monitor/text_box.h"
#include "runtime/userint.h"
#include "settings/settings.h"

const char TRF_METER_ARRAY[] = "Probiha komunikace ";
const char TRF_METER_BINARY[] = "Communication. Block ";

namespace {

constexpr uint32_t METER_BLOCKS_MIN = 4; // a shorter transfer shows no box

struct Meter {
    const char *text = "";
    uint32_t blocks = 0;
    uint32_t done = 0;
    int dialog = 0; // 0 = none
};

Meter OpenMeter(const TransferPlan &plan)
{
    Meter meter;
    meter.text = plan.meterText;
    meter.blocks = (plan.count + plan.blockBytes - 1) / plan.blockBytes;
    if (meter.blocks >= METER_BLOCKS_MIN)
        meter.dialog = CreateProgressDialog("Vireo2", meter.text);
    return meter;
}

// True once the user has cancelled; the last block is past cancelling.
bool StepMeter(Meter *meter)
{
    meter->done++;
    if (meter->dialog <= 0)
        return false;
    const int percent = static_cast<int>(uint64_t(100) * meter->done / meter->blocks);
    const std::string text = CON_Format("%s%u/%u", meter->text, meter->done, meter->blocks);
    return UpdateProgressDialog(meter->dialog, percent, text) == 1 && meter->done < meter->blocks;
}

void CloseMeter(Meter *meter)
{
    if (meter->dialog > 0)
        DiscardProgressDialog(meter->dialog);
}

// Runs `move` on each block.
template <typename Move> TransferResult RunBlocks(const TransferPlan &plan, Move move)
{
    Meter meter = OpenMeter(plan);
    TransferResult result = TRANSFER_DONE;
    for (uint32_t at = 0; at < plan.count && result == TRANSFER_DONE; at += plan.blockBytes) {
        result = move(at, std::min(plan.blockBytes, plan.count - at));
        if (result == TRANSFER_DONE && StepMeter(&meter))
            result = TRANSFER_CANCELLED;
    }
    CloseMeter(&meter);
    return result;
}

} // namespace

TransferResult TRF_Read(const TransferPlan &plan, const TransferTaker &take)
{
    std::vector<uint8_t> block(plan.blockBytes);
    const TransferResult result = RunBlocks(plan, [&](uint32_t at, uint32_t count) {
        if (UCM_Read(STATION, plan.address + at, count, block.data()) < 0)
            return TRANSFER_LINK;
        return take(plan.address + at, block.data(), count) ? TRANSFER_DONE : TRANSFER_TAKER;
    });
    // Equipment on the line may have repeated an answer: only proven bytes count as read.
    return result == TRANSFER_DONE && UCM_Prove() != UCM_PROVEN ? TRANSFER_LINK : result;
}

TransferResult TRF_Write(const TransferPlan &plan, const uint8_t *bytes, uint32_t *written)
{
    *written = 0;
    return RunBlocks(plan, [&](uint32_t at, uint32_t count) {
        if (UCM_Write(STATION, plan.address + at, count, bytes + at) < 0)
            return TRANSFER_LINK;
        *written += count;
        return TRANSFER_DONE;
    });
}
