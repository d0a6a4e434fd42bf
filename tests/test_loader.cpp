// The boot-strap loader's protocol to its bytes and codes, and programming with every kind
// of interruption, against a simulated loader without a clock.
#include "loader/hex_stream.h"
#include "loader/program.h"
#include "support/loader_rig.h"
#include "support/scratch.h"
#include "support/text_checks.h"

#include <cstring>
#include <functional>
#include <random>

namespace {

using Bytes = std::vector<uint8_t>;

// --- the protocol -----------------------------------------------------------------------------

TEST(LoaderProtocol, AnswersAreCheckedBySumAndLength)
{
    const uint8_t head = 0x56 + 0x34 + 0x12, written = (3 + 2 + head + 0x50 + 0x51) & 0xFF;
    const uint8_t sum = 4 + 2 + head + 1 + 2;
    const struct {
        bool isRead;
        Bytes answer;
        int result;
        L3_Fault fault;
    } cases[] = {{true, {1, 2, sum}, 0, L3_FAULT_NONE},
                 {true, {1, 2, 3}, -1, L3_FAULT_CHECKSUM},
                 {true, {1, 3, sum}, -1, L3_FAULT_CHECKSUM},
                 {true, {1, 2}, -1, L3_FAULT_SHORT},
                 {true, {}, -1, L3_FAULT_SILENT},
                 {false, {written}, 0, L3_FAULT_NONE},
                 {false, {head}, -1, L3_FAULT_CHECKSUM},
                 {false, {}, -1, L3_FAULT_SILENT}};
    LoaderRig rig;
    for (const auto &c : cases) {
        SIM_ScriptCable(&rig, c.answer);
        IHEX167_Block block = {0x123456, 2, {0x50, 0x51}};
        EXPECT_EQ(c.result,
                  c.isRead ? LD167U_L3CmdReadBlock(&block) : LD167U_L3CmdWriteBlock(&block));
        EXPECT_EQ(c.fault, LD167U_enFault);
        EXPECT_EQ(c.isRead ? Bytes({4, 2, 0x56, 0x34, 0x12})
                           : Bytes({3, 2, 0x56, 0x34, 0x12, 0x50, 0x51}),
                  rig.sent);
        EXPECT_TRUE(!c.isRead || c.result != 0 || (block.data[0] == 1 && block.data[1] == 2));
    }
}

TEST(LoaderProtocol, BlocksThatCannotBeCarriedAreNotSent)
{
    LoaderRig rig;
    const IHEX167_Block refused[] = {
        {0x100, 0, {}}, {0x100, 256, {}}, {0x1000000, 1, {}}, {0x10000, 252, {}}};
    for (IHEX167_Block block : refused) {
        EXPECT_EQ(-1, LD167U_L3CmdWriteBlock(&block));
        EXPECT_TRUE(rig.sent.empty()) << block.length;
        EXPECT_EQ(block.length == 252 ? 0 : -1, LD167U_L3CmdReadBlock(&block));
    }
    IHEX167_Block longest = {0x10000, 251, {}}, chip = {0xFF00, 1, {}};
    EXPECT_EQ(0, LD167U_L3CmdWriteBlock(&longest));
    EXPECT_EQ(-1, LD167U_L3CmdWriteBlock(&chip)) << "the target refuses what is no flash";
    wMrOpenFlag = 0;
    EXPECT_EQ(-1, LD167U_L3CmdReadBlock(&longest));
    EXPECT_EQ(HEX_LOAD_ERR_CLOSED, LD167U_L3CmdWriteHexFile("none.hex"));
    EXPECT_EQ(-1, LD167U_L3CmdEraseFlash());
}

TEST(LoaderProtocol, LinkTestAndEraseKnowTheirAnswers)
{
    LoaderRig rig;
    rig.incoming = {9, 9};
    EXPECT_EQ(0, LD167U_L3Test());
    EXPECT_EQ(Bytes({4, 4, 0x1C, 0xFF, 0}), rig.sent) << "and old bytes are dropped";
    EXPECT_EQ(1000u, rig.readMs);
    Bytes late(20, 0), tooLate(21, 0);
    late.push_back(0xE5);
    tooLate.push_back(0xE5);
    const struct {
        Bytes answer;
        int result;
        const char *text;
    } cases[] = {{{0xE5}, 0, "done"},   {{0xE4}, -2, "wrong answer 0xE4"},
                 {{}, -3, "no answer"}, {{0, 0, 1}, -2, "wrong answer 0x01"},
                 {late, 0, "done"},     {tooLate, -3, "no answer"}};
    for (const auto &c : cases) {
        SIM_ScriptCable(&rig, c.answer);
        EXPECT_EQ(c.result, LD167U_L3CmdEraseFlash());
        EXPECT_EQ(c.text, LD167U_GetFaultText());
        EXPECT_EQ(Bytes({0x5E, 0xAA, 0x55, 0xAA}), rig.sent);
    }
    SIM_ScriptCable(&rig, {0xE4});
    EXPECT_EQ(-2, LD167U_L3CmdEraseFlash());
    SIM_ScriptCable(&rig,
                    {0, 0, 0xFE, 0xFF, static_cast<uint8_t>(4 + 4 + 0x1C + 0xFF + 0xFE + 0xFF)});
    EXPECT_EQ(-1, LD167U_L3Test());
    EXPECT_EQ("wrong answer", LD167U_GetFaultText()) << "without the byte of another command";
    rig.bytesLeft = 3;
    EXPECT_EQ(-1, LD167U_L3CmdEraseFlash());
}

TEST(LoaderProtocol, HexFilesStreamRecordByRecord)
{
    const std::string base = ":020000040001F9\n", first = ":020010001234A8\n";
    const std::string second = ":0200120056781E\n", end = ":00000001FF\n";
    const struct {
        std::string text;
        int result;
        std::string flash; // of the four bytes
    } cases[] = {{base + first + second + end, 0, "\x12\x34\x56\x78"},
                 {base + first + end + "x\n", 0, "\x12\x34\xFF\xFF"},
                 {base + first + second + ":0400000500001234B1\n" + end, -4, "\x12\x34\xFF\xFF"},
                 {base + first + ":00001400EC\n" + end, -2, "\xFF\xFF\xFF\xFF"},
                 {base + first + ":020000040100F9\n" + second + end, -2, "\xFF\xFF\xFF\xFF"},
                 {":02E000001234D8\n" + second + end, -3, "\xFF\xFF\xFF\xFF"}};
    const ScratchFolder folder;
    const std::string path = (folder / "a.hex").string();
    LoaderRig rig;
    for (const auto &c : cases) {
        WriteFileText(path, c.text);
        LD167U_L3CmdEraseFlash();
        EXPECT_EQ(c.result, LD167U_L3CmdWriteHexFile(path)) << c.text;
        EXPECT_EQ(c.flash, std::string(&rig.loader.flash[0x10010], &rig.loader.flash[0x10014]))
            << c.text;
    }
    EXPECT_EQ("block at 0x00E000: wrong check sum", HEX_GetLoadCause());
    EXPECT_EQ(-1, LD167U_L3CmdWriteHexFile("none.hex"));
}

// --- programming ------------------------------------------------------------------------

struct Programming : testing::Test {
    const ScratchFolder folder;
    const std::string path = (folder / "a.hex").string();
    std::mt19937 generator{15};
    LDR_Job job;
    int stopAt = 0; // the user's wish, at the n-th step; 0 = never
    std::function<void()> atStep;

    uint32_t Random(uint32_t below)
    {
        return static_cast<uint32_t>(generator()) % below;
    }
    static bool Step(void *context, uint32_t done, uint32_t total, const char *)
    {
        auto *self = static_cast<Programming *>(context);
        EXPECT_LE(done, total);
        if (self->atStep)
            self->atStep();
        return self->stopAt > 0 && --self->stopAt == 0;
    }
    int RunJob(bool isResume)
    {
        return LDR_RunOnPort(&job, isResume, {this, Step, nullptr});
    }
    static std::string Record(uint32_t offset, uint32_t type, Bytes data)
    {
        const Bytes head = {static_cast<uint8_t>(data.size()), static_cast<uint8_t>(offset >> 8),
                            static_cast<uint8_t>(offset), static_cast<uint8_t>(type)};
        data.insert(data.begin(), head.begin(), head.end());
        data.push_back(0);
        for (size_t i = 0; i + 1 < data.size(); i++)
            data.back() = static_cast<uint8_t>(data.back() - data[i]);
        std::string text = ":";
        for (const uint8_t byte : data)
            for (const int nibble : {byte >> 4, byte & 15})
                text += "0123456789ABCDEF"[nibble];
        return text + "\n";
    }
    // A HEX file of some stretches with records of all lengths, in any order.
    void MakeFile(uint32_t stretches, uint32_t mostBytes)
    {
        std::vector<std::string> lines;
        for (uint32_t i = 0; i < stretches; i++) {
            uint32_t at = 0x10000 * (1 + i % 7) + 0x1000 * i + Random(0x400);
            for (uint32_t left = 1 + Random(mostBytes); left > 0;) {
                Bytes data(std::min(left, 1 + Random(Random(4) == 0 ? 255 : 40)));
                for (uint8_t &byte : data)
                    byte = static_cast<uint8_t>(Random(8) == 0 ? 0xFF : Random(256));
                lines.push_back(Record(0, 4, {0, static_cast<uint8_t>(at >> 16)}) +
                                Record(at & 0xFFFF, 0, data));
                at += static_cast<uint32_t>(data.size());
                left -= static_cast<uint32_t>(data.size());
            }
        }
        std::shuffle(lines.begin(), lines.end(), generator);
        std::string text;
        for (const std::string &line : lines)
            text += line;
        WriteFileText(path, text + ":00000001FF\n");
    }
    Bytes Image() const
    {
        Bytes image(SIM_FLASH_SIZE, 0xFF);
        for (const HEX_Record &record : job.file.records)
            std::memcpy(&image[record.address], &job.file.data[record.dataAt], record.length);
        return image;
    }
    // Whether what the job says about the flash is so.
    bool IsTrue(const Bytes &flash, const Bytes &before) const
    {
        const Bytes image = Image();
        bool isTrue = job.flash != LDR_FLASH_UNTOUCHED || flash == before;
        isTrue = isTrue && (job.flash != LDR_FLASH_ERASED || flash == Bytes(SIM_FLASH_SIZE, 0xFF));
        isTrue = isTrue && (job.flash != LDR_FLASH_WHOLE || flash == image);
        for (size_t i = 0; job.flash == LDR_FLASH_PARTLY && i < job.verified; i++)
            isTrue = isTrue && std::memcmp(&flash[job.plan[i].address], &image[job.plan[i].address],
                                           job.plan[i].length) == 0;
        return isTrue;
    }
};

TEST_F(Programming, TellsEveryStepAndLeavesTheFileInTheFlash)
{
    MakeFile(6, 3000);
    ASSERT_EQ(0, LDR_Prepare(&job, path));
    const std::string question = LDR_GetQuestion(job, 3);
    EXPECT_TRUE(Has(question, "COM3 and program\n" + path + "\nto 0x010"));
    LoaderRig rig;
    std::string seen, last;
    atStep = [&] {
        std::string states = " ";
        for (const LDR_StepState step : job.steps)
            states += "-orDF"[step];
        seen += states == last ? "" : states;
        last = states;
        rig.incoming.push_back(9); // what comes unasked is no answer
    };
    EXPECT_EQ(0, RunJob(false));
    EXPECT_EQ(" DDD-- DDDrr", seen);
    EXPECT_EQ(LDR_DONE, job.steps[LDR_STEP_VERIFY]);
    EXPECT_EQ(job.bytesTotal, job.bytesDone);
    EXPECT_TRUE(rig.loader.flash == Image());

    // Without erasing only what differs is written: nothing, then one block.
    job.isErase = false;
    Bytes &flash = rig.loader.flash;
    const HEX_Record end = job.plan.back(), begin = job.plan.front();
    for (const uint32_t writes : {0u, 1u}) {
        rig.loader.writes = 0;
        EXPECT_EQ(0, RunJob(false));
        EXPECT_EQ(writes, rig.loader.writes);
        std::fill_n(flash.begin() + end.address, end.length, uint8_t{0xFF});
    }
    // What cannot be reached is found before any write.
    flash[end.address] = static_cast<uint8_t>(~Image()[end.address]);
    flash[begin.address] = 0xFF;
    rig.loader.writes = 0;
    EXPECT_EQ(LDR_ERR_NEEDS_ERASE, RunJob(false));
    EXPECT_EQ(end.address, job.difference.address);
    EXPECT_EQ(0u, rig.loader.writes);
    EXPECT_EQ(LDR_FLASH_UNTOUCHED, job.flash);

    // Nor is anything written when the board was changed while the programming stood still.
    job.isErase = true;
    stopAt = 60;
    ASSERT_EQ(LDR_ERR_CANCELLED, RunJob(false));
    flash.assign(SIM_FLASH_SIZE, 0xFF);
    rig.loader.writes = 0;
    EXPECT_EQ(LDR_ERR_NEEDS_ERASE, RunJob(true));
    EXPECT_EQ(0u, rig.loader.writes);
    EXPECT_FALSE(LDR_CanResume(job));
}

TEST_F(Programming, FailuresLeaveTheTruthAndNoOtherStep)
{
    MakeFile(3, 1000);
    const std::string good = ReadFileText(path);
    MakeFile(3, 1000);
    const std::string other = ReadFileText(path);
    LoaderRig *rig = nullptr;
    const struct {
        std::function<void()> spoil;
        int result;
        LDR_Flash flash;
    } cases[] = {
        {[&] { rig->loader.faults.silentAfter = 0; }, LDR_ERR_TARGET, LDR_FLASH_UNTOUCHED},
        {[&] { rig->loader.faults.isEraseSilent = true; }, LDR_ERR_ERASE, LDR_FLASH_ERASING},
        {[&] { rig->loader.faults.eraseAnswer = 0xE4; }, LDR_ERR_ERASE, LDR_FLASH_ERASING},
        {[&] { stopAt = 1; }, LDR_ERR_CANCELLED, LDR_FLASH_ERASED},
        {[&] { stopAt = 20; }, LDR_ERR_CANCELLED, LDR_FLASH_PARTLY},
        {[&] { rig->loader.faults.silentAfter = 31; }, LDR_ERR_WRITE, LDR_FLASH_PARTLY},
        {[&] { WriteFileText(path, other); }, LDR_ERR_CHANGED, LDR_FLASH_UNTOUCHED},
        {[&] { atStep = [this] { std::filesystem::remove(path); }; }, LDR_ERR_CHANGED,
         LDR_FLASH_WHOLE},
        {[&] { // a cell that does not hold what was written
             atStep = [&] {
                 rig->loader.flash[job.plan[3].address] ^= job.written == 4 ? 0x10 : 0;
             };
         },
         LDR_ERR_DIFFERENT, LDR_FLASH_UNUSABLE}};
    for (const auto &c : cases) {
        WriteFileText(path, good);
        job = LDR_Job();
        stopAt = 0;
        atStep = nullptr;
        ASSERT_EQ(0, LDR_Prepare(&job, path));
        LoaderRig fresh;
        rig = &fresh;
        const Bytes before = rig->loader.flash;
        c.spoil();
        EXPECT_EQ(c.result, RunJob(false)) << LDR_GetResultText(job);
        EXPECT_EQ(c.flash, job.flash) << LDR_GetResultText(job);
        EXPECT_EQ(c.flash == LDR_FLASH_ERASED || c.flash == LDR_FLASH_PARTLY, LDR_CanResume(job));
        EXPECT_TRUE(IsTrue(rig->loader.flash, before)) << LDR_GetFlashText(job);
        for (const LDR_StepState step : job.steps)
            EXPECT_NE(LDR_RUNNING, step) << LDR_GetResultText(job);
    }
    WriteFileText(path, "x\n");
    EXPECT_EQ(LDR_ERR_PROBLEMS, LDR_Prepare(&job, path));
    LoaderRig untouched;
    EXPECT_EQ(LDR_ERR_PROBLEMS, RunJob(false));
    EXPECT_TRUE(untouched.sent.empty()) << "nothing is asked of the target for such a file";
}

// The block whose write nobody confirmed may hold anything: it is looked at before more is written.
TEST_F(Programming, GoingOnLooksAtTheBlockInDoubt)
{
    MakeFile(3, 1000);
    ASSERT_EQ(0, LDR_Prepare(&job, path));
    LoaderRig rig;
    rig.loader.faults.silentAfter = 31;
    ASSERT_EQ(LDR_ERR_WRITE, RunJob(false));
    rig.loader.faults = SIM_LoaderFaults();
    const uint32_t doubt = job.plan[std::max(job.written, job.verified)].address;
    rig.loader.flash[doubt] = static_cast<uint8_t>(~Image()[doubt]);
    rig.loader.writes = 0;
    EXPECT_EQ(LDR_ERR_NEEDS_ERASE, RunJob(true));
    EXPECT_EQ(0u, rig.loader.writes);
}

// A write whose address was damaged on its way lands in a block that had been read back: what
// is told of the flash must not count on that block any more.
TEST_F(Programming, AStrayBlockTakesBackWhatWasVerified)
{
    WriteFileText(path, Record(0, 4, {0, 1}) + Record(0x100, 0, Bytes(40, 0x3C)) +
                            Record(0x800, 0, Bytes(40, 0xC3)) + ":00000001FF\n");
    ASSERT_EQ(0, LDR_Prepare(&job, path));
    LoaderRig rig;
    LD167U_Port line = *LD167U_pPort;
    line.write = [](const void *bytes, size_t count) {
        Bytes request(count);
        std::memcpy(request.data(), bytes, count);
        if (request[0] == 3 && request[3] == 0x08)
            request[3] = 0x01; // the high byte of 0x800
        return SIM_WriteCable(LoaderRig::rig, request.data(), count);
    };
    LD167U_pPort = &line;
    size_t verified = 0;
    atStep = [&] { verified = std::max(verified, job.verified); };
    EXPECT_EQ(LDR_ERR_WRITE, RunJob(false));
    EXPECT_EQ(1u, verified);
    EXPECT_EQ(0, rig.loader.flash[0x10100]) << "the stray block has cleared its bits";
    EXPECT_TRUE(IsTrue(rig.loader.flash, {})) << LDR_GetFlashText(job);
    EXPECT_TRUE(Has(LDR_GetFlashText(job), "may stand at a wrong address"));
    EXPECT_EQ(LDR_ERR_NEEDS_ERASE, RunJob(true));
    EXPECT_EQ(LDR_FLASH_UNUSABLE, job.flash);
}

// Interrupted at random moments in every way, and gone on with until it is done: the flash
// holds the file and nothing else every time, and what was told in between was true.
TEST_F(Programming, TwoHundredInterruptionsEndWithTheRightImage)
{
    enum { CANCEL, UNPLUG, DROP, CORRUPT, SHORTEN, LENGTHEN, CORRUPT_REQUEST, WAYS };
    constexpr int RUNS = 210, FAULTY_ATTEMPTS = 4;
    int interrupted = 0, resumed = 0, erasedAgain = 0;
    for (int run = 0; run < RUNS; run++) {
        const int way = run % WAYS;
        MakeFile(1 + Random(4), 1500);
        job = LDR_Job();
        job.isVerify = way == CORRUPT_REQUEST || Random(5) > 0;
        ASSERT_EQ(0, LDR_Prepare(&job, path));
        LoaderRig rig(static_cast<uint32_t>(run));
        SIM_LoaderFaults &faults = rig.loader.faults;
        int result = -1;
        for (int attempt = 0; result != 0 && attempt < 20; attempt++) {
            const bool isFaulty = attempt < FAULTY_ATTEMPTS;
            SIM_ReplugCable(&rig);
            stopAt = way == CANCEL && isFaulty ? 1 + static_cast<int>(Random(60)) : 0;
            rig.bytesLeft = way == UNPLUG && isFaulty ? 1 + static_cast<long>(Random(4000)) : -1;
            double *const shares[WAYS] = {
                nullptr,         nullptr,          &faults.drop,          &faults.corrupt,
                &faults.shorten, &faults.lengthen, &faults.corruptRequest};
            if (shares[way] != nullptr)
                *shares[way] = isFaulty ? 0.02 : 0;
            const bool isResume = LDR_CanResume(job);
            const uint32_t erases = rig.loader.erases;
            const Bytes before = rig.loader.flash;
            const LDR_Flash known = job.flash;
            result = RunJob(isResume);
            interrupted += result != 0;
            resumed += isResume;
            erasedAgain += rig.loader.erases > erases && known > LDR_FLASH_ERASING;
            EXPECT_FALSE(isResume && rig.loader.erases > erases) << run;
            EXPECT_TRUE(IsTrue(rig.loader.flash, before)) << run << LDR_GetFlashText(job);
        }
        EXPECT_TRUE(result == 0 && rig.loader.flash == Image()) << run;
    }
    EXPECT_GE(interrupted, 200);
    EXPECT_GE(resumed, 150) << "an interruption seldom costs an erase";
    EXPECT_GT(erasedAgain, 0) << "a damaged request must cost one";
}

} // namespace
