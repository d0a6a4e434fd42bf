// Blocks are the file's records in ascending order. Writing goes block by block, reading back by
// groups of them, because an answer may hold more than a write command.
#include "loader/plan.h"

#include "loader/l3_protocol.h"

namespace {

// Even, for a flash that is written in words.
constexpr uint16_t SPLIT_BYTES = 128;

} // namespace

void LDR_MakePlan(LDR_Job *job)
{
    job->plan.clear();
    for (const HEX_Record &record : job->file.records) {
        // A command for 255 bytes would not fit the queue with its head.
        HEX_Record rest = record;
        while (rest.length > LD167U_WRITE_DATA_MAX) {
            HEX_Record part = rest;
            part.length = SPLIT_BYTES;
            job->plan.push_back(part);
            rest.address += SPLIT_BYTES;
            rest.dataAt += SPLIT_BYTES;
            rest.length = static_cast<uint16_t>(rest.length - SPLIT_BYTES);
        }
        job->plan.push_back(rest);
    }
}

LDR_Group LDR_GetGroup(const LDR_Job &job, size_t first)
{
    LDR_Group group;
    group.first = group.end = first;
    IHEX167_Block block;
    // Joining refuses what does not touch or would be too long: there the next group begins.
    while (group.end < job.plan.size()) {
        HEX_GetBlock(job.file, job.plan[group.end], &block);
        if (IHEX167_Join_block(&group.wanted, &block) < 0)
            break;
        ++group.end;
    }
    return group;
}

uint32_t LDR_CountBytes(const LDR_Job &job, size_t first, size_t end)
{
    uint32_t count = 0;
    for (size_t i = first; i < end; ++i)
        count += job.plan[i].length;
    return count;
}

bool LDR_FindDifference(const IHEX167_Block &wanted, const IHEX167_Block &found, LDR_Difference *at)
{
    for (uint16_t i = 0; i < wanted.length; ++i) {
        if (wanted.data[i] == found.data[i])
            continue;
        *at = {wanted.address + i, wanted.data[i], found.data[i]};
        return true;
    }
    return false;
}

bool LDR_CanBecome(const IHEX167_Block &wanted, const IHEX167_Block &found, size_t at, size_t count)
{
    // A bit that is 0 stays 0 until the flash is erased.
    for (size_t i = at; i < at + count; ++i)
        if ((found.data[i] & wanted.data[i]) != wanted.data[i])
            return false;
    return true;
}
