// Answers of a boot-strap loader that has gone mad. Whatever it says, a programming comes to
// an end, and what the job then says about the flash fits what was answered: nothing counts
// as verified that was not read back equal.
#include "comm/mr166_link.h"
#include "loader/l3_protocol.h"
#include "loader/program.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

const uint8_t *answers;
size_t answersLeft;
uint8_t sum;         // of the request on the line
uint32_t wantedRead; // data bytes the last read command asked for
std::vector<uint8_t> request;

void Require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

uint8_t TakeByte()
{
    if (answersLeft == 0)
        return 0;
    --answersLeft;
    return *answers++;
}

int Write(const void *bytes, size_t count)
{
    request.assign(static_cast<const uint8_t *>(bytes),
                   static_cast<const uint8_t *>(bytes) + count);
    sum = 0;
    for (const uint8_t byte : request)
        sum = static_cast<uint8_t>(sum + byte);
    wantedRead = request.size() == 5 && request[0] == 4 ? request[1] : 0;
    return static_cast<int>(count);
}

// The first byte of each answer's recipe says how good the answer is, so that the fuzzer
// gets past the link test: mostly honest, else bytes of the input.
int Read(void *buffer, size_t count)
{
    uint8_t *to = static_cast<uint8_t *>(buffer);
    const uint8_t way = TakeByte();
    if (answersLeft == 0 || way > 0xF0)
        return way == 0xFF ? -1 : 0;
    const bool isTest = wantedRead == 4 && request[2] == 0x1C && request[3] == 0xFF;
    for (size_t i = 0; i < count; ++i)
        to[i] = isTest && way < 0xE0 ? (i < 2 ? 0x00 : 0xFF) : TakeByte();
    if (way >= 0xE0)
        return static_cast<int>(count > 1 ? TakeByte() % (count + 1) : count);
    uint8_t check = sum;
    for (size_t i = 0; i + 1 < count; ++i)
        check = static_cast<uint8_t>(check + to[i]);
    const bool isErase = request.size() == 1;
    to[count - 1] = isErase ? uint8_t{0xE5} : check;
    return static_cast<int>(count);
}

int Drop()
{
    return 0;
}

int SetTimeouts(unsigned, unsigned)
{
    return 0;
}

const LD167U_Port PORT = {Write, Read, Drop, SetTimeouts};
LDR_Job prepared;

void CheckState(const LDR_Job &job, int result)
{
    Require(result <= 0 && job.verified <= job.plan.size() && job.written <= job.plan.size());
    Require(job.verified <= job.written || result == 0);
    Require((job.flash == LDR_FLASH_WHOLE) == (result == 0));
    Require(result != 0 || !job.isVerify || job.verified == job.plan.size());
    Require(!LDR_GetResultText(job).empty() && !LDR_GetFlashText(job).empty());
    for (const LDR_StepState step : job.steps)
        Require(step != LDR_RUNNING);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    const std::string path = std::filesystem::temp_directory_path().string() + "/fuzz_loader." +
                             std::to_string(getpid());
    std::FILE *file = std::fopen(path.c_str(), "wb");
    Require(file != nullptr);
    std::fputs(":0400100000010203E6\n:020014000405E1\n:0100300055"
               "7A\n:00000001FF\n",
               file);
    std::fclose(file);
    Require(LDR_Prepare(&prepared, path) == 0);
    LD167U_pPort = &PORT;
    wMrOpenFlag = 1;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    answers = data + 1;
    answersLeft = size - 1;
    LDR_Job job = prepared;
    job.isErase = (data[0] & 1) == 0;
    job.isVerify = (data[0] & 2) == 0;
    int result = LDR_RunOnPort(&job, false, LDR_Progress());
    CheckState(job, result);
    for (int i = 0; i < 3 && LDR_CanResume(job); ++i) {
        result = LDR_RunOnPort(&job, true, LDR_Progress());
        CheckState(job, result);
    }
    return 0;
}
