// One loop for both directions: it knows exchanges, proofs and the meter, its caller the data.
#include "console/commands/transfer.h"

#include <algorithm>
#include <vector>

#include "comm/ucm.h"
#include "console/monitor/text_box.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"

const char SCR_METER_ARRAY[] = "Probiha komunikace ";
const char SCR_METER_BINARY[] = "Communication. Block ";

namespace {

constexpr uint32_t METER_BLOCKS_MIN = 4; // a shorter transfer shows no box
constexpr uint32_t STRETCH_BYTES = 4096; // with one proof behind them, and read again as a whole
constexpr int STOPPED_BY_USER = -1000;   // no exchange has this code

struct Meter {
    const char *text = "";
    uint32_t perBlock = 1;
    uint32_t blocks = 0;
    uint32_t shown = UINT32_MAX; // the block that stands in the box
    int dialog = 0;              // 0 = none
};

uint32_t CountBlocks(uint32_t count, uint32_t perBlock)
{
    return count / perBlock + (count % perBlock != 0 ? 1 : 0);
}

// Shows how far the transfer is; true once the user wants to go no further.
bool IsStopped(Meter *meter, uint32_t at)
{
    const uint32_t done = at / meter->perBlock;
    // A box that could not be made is no reason not to transfer.
    if (meter->dialog > 0 && done != meter->shown) {
        meter->shown = done;
        const int percent = static_cast<int>(uint64_t(100) * done / meter->blocks);
        const std::string text = TXT_Format("%s%u/%u", meter->text, done, meter->blocks);
        if (UpdateProgressDialog(meter->dialog, percent, text) == 1)
            return true;
    }
    return IsBreakWished();
}

// One stretch from `at` on. What stands in front of a failure is handed over as well.
void MoveStretch(const TransferSteps &steps, Meter *meter, uint32_t at, uint32_t count,
                 TransferReport *report)
{
    const uint32_t exchanges = CountBlocks(count, steps.perExchange);
    const UCM_Series series = UCM_MakeSeries(exchanges, [&](uint32_t i) {
        const uint32_t from = i * steps.perExchange;
        if (at + from > 0 && IsStopped(meter, at + from))
            return STOPPED_BY_USER;
        return steps.exchange(at + from, std::min(steps.perExchange, count - from));
    });
    const uint32_t good = std::min(series.good * steps.perExchange, count);
    report->moved = at + std::min(series.made * steps.perExchange, count);
    report->isProven = series.good == series.made;
    if (good > 0 && steps.settle && !steps.settle(at, good)) {
        report->result = TRANSFER_TAKER;
    } else if (series.result < 0) {
        const bool isStopped = series.result == STOPPED_BY_USER || IsBreakWished();
        report->result = isStopped ? TRANSFER_CANCELLED : TRANSFER_LINK;
        // All made and yet a failure: then it is the proof that failed, which has no code.
        report->code = series.made < exchanges ? series.result : 0;
        report->cause = series.cause;
    }
}

} // namespace

TransferReport SCR_RunTransfer(const TransferSteps &steps)
{
    TransferReport report;
    Meter meter;
    meter.text = steps.meterText;
    meter.perBlock = steps.perBlock;
    meter.blocks = CountBlocks(steps.count, steps.perBlock);
    if (meter.blocks >= METER_BLOCKS_MIN)
        meter.dialog = CreateProgressDialog("Vireo2", meter.text);
    for (uint32_t at = 0; at < steps.count && report.result == TRANSFER_DONE;
         at += steps.perStretch)
        MoveStretch(steps, &meter, at, std::min(steps.perStretch, steps.count - at), &report);
    if (meter.dialog > 0)
        DiscardProgressDialog(meter.dialog);
    return report;
}

TransferReport SCR_ReadTransfer(const TransferPlan &plan, const TransferTaker &take)
{
    TransferSteps steps;
    steps.count = plan.count;
    steps.perExchange = steps.perBlock = plan.blockBytes;
    // Whole blocks, so that a block is proven, or read again, in one piece.
    steps.perStretch = STRETCH_BYTES / plan.blockBytes * plan.blockBytes;
    steps.meterText = plan.meterText;
    // One stretch is kept, until its proof; a stretch that is made again overwrites itself.
    std::vector<uint8_t> stretch(std::min(plan.count, steps.perStretch));
    steps.exchange = [&](uint32_t at, uint32_t count) {
        return UCM_Read(STATION, plan.address + at, count, &stretch[at % steps.perStretch]);
    };
    steps.settle = [&](uint32_t at, uint32_t count) {
        return take(plan.address + at, stretch.data(), count);
    };
    return SCR_RunTransfer(steps);
}

TransferReport SCR_WriteTransfer(const TransferPlan &plan, const uint8_t *bytes)
{
    TransferSteps steps;
    steps.count = plan.count;
    steps.perBlock = plan.blockBytes;
    // A write of several messages would not say how far it came; one message does.
    steps.perExchange = std::min(plan.blockBytes, UCM_WriteStep());
    steps.perStretch = STRETCH_BYTES / steps.perExchange * steps.perExchange;
    steps.meterText = plan.meterText;
    steps.exchange = [&](uint32_t at, uint32_t count) {
        return UCM_Write(STATION, plan.address + at, count, bytes + at);
    };
    return SCR_RunTransfer(steps);
}

std::string SCR_WrittenText(const TransferReport &report, uint32_t count, uint32_t unitBytes)
{
    return TXT_Format("%s%u of %u bytes written", report.isProven ? "" : "at most ",
                      report.moved * unitBytes, count * unitBytes);
}
