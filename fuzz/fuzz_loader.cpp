// Answers of a boot-strap loader that has gone mad. Whatever it says, a programming comes to
// an end, and nothing counts as done that was not accepted and read back.
#include "comm/mr166_link.h"
#include "loader/l3_protocol.h"
#include "loader/program.h"
#include "scratch_folder.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

const uint8_t *answers;
size_t answersLeft;
std::vector<uint8_t> request; // the last one sent
LDR_Job prepared;

uint8_t NextByte()
{
    return answersLeft > 0 ? --answersLeft, *answers++ : uint8_t{0};
}

int Write(const void *bytes, size_t count)
{
    const auto *byte = static_cast<const uint8_t *>(bytes);
    request.assign(byte, byte + count);
    return static_cast<int>(count);
}

// The first byte says how good the answer is, so that the fuzzer gets past the link test and
// the check sums: silent, gone, wild, or honest but for its data.
int Read(void *buffer, size_t count)
{
    uint8_t *to = static_cast<uint8_t *>(buffer);
    const uint8_t way = NextByte();
    if (answersLeft == 0 || way > 0xF0)
        return way == 0xFF ? -1 : 0;
    std::generate(to, to + count, NextByte);
    if (way >= 0xE0)
        return static_cast<int>(NextByte() % (count + 1));
    if (count == 5 && request[2] == 0x1C && request[3] == 0xFF) // the link test
        to[0] = to[1] = 0, to[2] = to[3] = 0xFF;
    const int sum = std::accumulate(request.begin(), request.end(), 0);
    to[count - 1] = static_cast<uint8_t>(std::accumulate(to, to + count - 1, sum));
    if (request.size() == 1) // erasing
        to[0] = 0xE5;
    return static_cast<int>(count);
}

void RunJob(LDR_Job *job, bool isResume)
{
    const int result = LDR_RunOnPort(job, isResume, LDR_Progress());
    FUZ_Check(result <= 0 && job->written <= job->plan.size() && job->verified <= job->written);
    FUZ_Check((job->flash == LDR_FLASH_WHOLE) == (result == 0));
    FUZ_Check(result != 0 || !job->isVerify || job->verified == job->plan.size());
    FUZ_Check(!LDR_GetResultText(*job).empty() && !LDR_GetFlashText(*job).empty());
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    static const LD167U_Port PORT = {Write, Read, [] { return 0; },
                                     [](unsigned, unsigned) { return 0; }};
    FUZ_WriteFile("a.hex", ":0400100000010203E6\n:020014000405E1\n:01003000557A\n:00000001FF\n");
    FUZ_Check(LDR_Prepare(&prepared, FUZ_Folder() + "/a.hex") == 0);
    LD167U_pPort = &PORT;
    wMrOpenFlag = 1;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    answers = data + 1;
    answersLeft = size > 0 ? size - 1 : 0;
    LDR_Job job = prepared;
    job.isErase = size > 0 && (data[0] & 1) == 0;
    job.isVerify = size > 0 && (data[0] & 2) == 0;
    RunJob(&job, false);
    for (int i = 0; i < 3 && LDR_CanResume(job); ++i)
        RunJob(&job, true);
    return 0;
}
