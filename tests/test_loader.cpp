// The boot-strap loader's protocol to its bytes and codes, and programming with every kind
// of interruption, against a simulated loader without a clock.
#include "loader/hex_stream.h"
#include "loader/program.h"
#include "support/loader_rig.h"
#include "support/scratch.h"

#include <cstring>
#include <functional>
#include <random>

namespace {

using Bytes = std::vector<uint8_t>;

// --- the protocol -----------------------------------------------------------------------------

struct Protocol : testing::Test {
    LoaderRig rig;
    Bytes answers;

    // Answers as given, whatever is asked.
    void Script(const Bytes &bytes)
    {
        answers = bytes;
        rig.wire.scripted = &answers;
        rig.wire.sent.clear();
    }
    static IHEX167_Block Block(uint32_t address, uint16_t length)
    {
        IHEX167_Block block;
        block.address = address;
        block.length = length;
        for (int i = 0; i < length && i < 255; i++)
            block.data[i] = static_cast<uint8_t>(0xA0 + i);
        return block;
    }
};

TEST_F(Protocol, ReadsCheckTheSumOfBothDirections)
{
    const uint8_t sum = 0x04 + 0x03 + 0x56 + 0x34 + 0x12 + 1 + 2 + 3;
    const struct {
        Bytes answer;
        int result;
        L3_Fault fault;
    } cases[] = {{{1, 2, 3, sum}, 0, L3_FAULT_NONE},
                 {{1, 2, 3, 1 + 2 + 3}, -1, L3_FAULT_CHECKSUM},
                 {{1, 2, 4, sum}, -1, L3_FAULT_CHECKSUM},
                 {{1, 2, 3}, -1, L3_FAULT_SHORT},
                 {{}, -1, L3_FAULT_SILENT}};
    for (const auto &c : cases) {
        Script(c.answer);
        IHEX167_Block block = Block(0x123456, 3);
        EXPECT_EQ(c.result, LD167U_L3CmdReadBlock(&block));
        EXPECT_EQ(c.fault, LD167U_enFault);
        EXPECT_EQ(Bytes({0x04, 0x03, 0x56, 0x34, 0x12}), rig.wire.sent);
        EXPECT_EQ(0, LD167U_cnSendBuffer);
        if (c.result == 0) {
            EXPECT_EQ(Bytes({1, 2, 3}), Bytes(block.data, block.data + 3));
        }
    }
}

TEST_F(Protocol, WritesCheckTheSumOfWhatWasSent)
{
    const auto sum = static_cast<uint8_t>(0x03 + 0x02 + 0x56 + 0x34 + 0x12 + 0xA0 + 0xA1);
    const struct {
        Bytes answer;
        int result;
        L3_Fault fault;
    } cases[] = {{{sum}, 0, L3_FAULT_NONE},
                 {{static_cast<uint8_t>(sum + 1)}, -1, L3_FAULT_CHECKSUM},
                 {{}, -1, L3_FAULT_SILENT}};
    for (const auto &c : cases) {
        Script(c.answer);
        const IHEX167_Block block = Block(0x123456, 2);
        EXPECT_EQ(c.result, LD167U_L3CmdWriteBlock(&block));
        EXPECT_EQ(c.fault, LD167U_enFault);
        EXPECT_EQ(Bytes({0x03, 0x02, 0x56, 0x34, 0x12, 0xA0, 0xA1}), rig.wire.sent);
    }
}

TEST_F(Protocol, BlocksThatCannotBeCarriedAreNotSent)
{
    const struct {
        uint32_t address;
        uint16_t length;
        int read, write;
    } cases[] = {{0x100, 0, -1, -1},   {0x100, 256, -1, -1}, {0x1000000, 1, -1, -1},
                 {0xFFFFFF, 1, 0, -1}, {0x10000, 251, 0, 0}, {0x10000, 252, 0, -1},
                 {0x10000, 255, 0, -1}};
    for (const auto &c : cases) {
        IHEX167_Block block = Block(c.address, c.length);
        rig.wire.sent.clear();
        EXPECT_EQ(c.write, LD167U_L3CmdWriteBlock(&block)) << c.length;
        // The last byte of the address space is no flash: sent, and refused by the target.
        EXPECT_EQ(c.write == 0 || c.read == 0 ? c.length <= 251 : false, !rig.wire.sent.empty());
        EXPECT_EQ(c.read, LD167U_L3CmdReadBlock(&block)) << c.length;
    }
    EXPECT_EQ(-1, LD167U_L3CmdReadBlock(nullptr));
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(0, LD167U_QueueByte(0));
    EXPECT_EQ(-1, LD167U_QueueByte(0));
    EXPECT_EQ(0, LD167U_SendQueue());
    EXPECT_EQ(-1, LD167U_SendQueue()) << "empty after any sending";
    wMrOpenFlag = 0;
    IHEX167_Block block = Block(0x10000, 1);
    EXPECT_EQ(-1, LD167U_L3CmdReadBlock(&block));
    EXPECT_EQ(-1, LD167U_WriteByte(0));
    EXPECT_EQ(-1, LD167U_ReadByte());
    EXPECT_EQ(HEXS_ERR_CLOSED, LD167U_L3CmdWriteHexFile("none.hex"));
    EXPECT_EQ(-1, LD167U_L3CmdEraseFlash());
}

TEST_F(Protocol, TheLinkTestReadsTwoRegisters)
{
    rig.wire.incoming = {9, 9};
    EXPECT_EQ(0, LD167U_L3Test());
    EXPECT_EQ(Bytes({0x04, 0x04, 0x1C, 0xFF, 0x00}), rig.wire.sent) << "and old bytes are dropped";
    EXPECT_EQ(1000u, rig.wire.readMs);
    EXPECT_EQ(1000u, rig.wire.writeMs);
    const int head = 0x04 + 0x04 + 0x1C + 0xFF;
    Script({0, 0, 0xFE, 0xFF, static_cast<uint8_t>(head + 0xFE + 0xFF)});
    EXPECT_EQ(-1, LD167U_L3Test());
    EXPECT_EQ("wrong answer", LD167U_GetFaultText());
}

TEST_F(Protocol, EraseWaitsForItsAnswer)
{
    const struct {
        Bytes answer;
        int result;
        const char *text;
    } cases[] = {{{0xE5}, 0, "done"},
                 {Bytes(20, 0), -3, "no answer"},
                 {{0xE4}, -2, "wrong answer 0xE4"},
                 {{0, 0, 1}, -2, "wrong answer 0x01"},
                 {Bytes(21, 0), -3, "no answer"}};
    for (const auto &c : cases) {
        Script(c.answer);
        EXPECT_EQ(c.result, LD167U_L3CmdEraseFlash());
        EXPECT_EQ(c.text, LD167U_GetFaultText());
        EXPECT_EQ(Bytes({0x5E, 0xAA, 0x55, 0xAA}), rig.wire.sent);
    }
    for (const size_t zeros : {20u, 21u}) {
        Bytes late(zeros, 0);
        late.push_back(0xE5);
        Script(late);
        EXPECT_EQ(zeros == 20 ? 0 : -3, LD167U_L3CmdEraseFlash()) << zeros;
    }
    rig.wire.bytesLeft = 3;
    EXPECT_EQ(-1, LD167U_L3CmdEraseFlash());
}

TEST_F(Protocol, HexFilesStreamRecordByRecord)
{
    const std::string base = ":020000040001F9\n", a = ":02001000123494A8\n";
    const std::string first = ":020010001234A8\n", second = ":0200120056781E\n",
                      end = ":00000001FF\n";
    const struct {
        std::string text;
        int result;
        uint32_t blocks;
    } cases[] = {{base + first + second + end, 0, 2},
                 {base + first + second, 0, 2},
                 {base + first + end + "x\n", 0, 1},
                 {base + first + second + ":0400000500001234B1\n" + end, -4, 1},
                 {base + first + second + "\n" + end, -4, 1},
                 {base + first + ":00001400EC\n" + end, -2, 0},
                 {base + first + ":020000040100F9\n" + second + end, -2, 0},
                 {":02E00000123498E0\n" + end, -4, 0},
                 {":02E000001234D8\n" + second + end, -3, 0},
                 {base + first + ":02E0000412341234\n", -4, 0}};
    const ScratchFolder folder;
    for (const auto &c : cases) {
        WriteFileText(folder / "a.hex", c.text);
        LD167U_L3CmdEraseFlash();
        rig.wire.loader.writes = 0;
        EXPECT_EQ(c.result, LD167U_L3CmdWriteHexFile((folder / "a.hex").string())) << c.text;
        EXPECT_EQ(c.blocks, rig.wire.loader.writes) << c.text;
        const uint8_t *at = &rig.wire.loader.flash[0x10010];
        const Bytes wanted = {
            uint8_t(c.blocks > 0 ? 0x12 : 0xFF), uint8_t(c.blocks > 0 ? 0x34 : 0xFF),
            uint8_t(c.blocks > 1 ? 0x56 : 0xFF), uint8_t(c.blocks > 1 ? 0x78 : 0xFF)};
        EXPECT_EQ(wanted, Bytes(at, at + 4)) << c.text;
    }
    EXPECT_EQ(-1, LD167U_L3CmdWriteHexFile("none.hex"));
    rig.wire.loader.faults.silentAfter = 0;
    WriteFileText(folder / "a.hex", base + first);
    EXPECT_EQ(-3, LD167U_L3CmdWriteHexFile((folder / "a.hex").string()));
    EXPECT_EQ("block at 0x010010: no answer", HEXS_GetCause());
}

// --- programming
// ----------------------------------------------------------------------------------

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
        LDR_Progress progress;
        progress.context = this;
        progress.step = Step;
        return LDR_RunOnPort(&job, isResume, progress);
    }
    // A HEX file of some stretches with records of all lengths, in any order.
    void MakeFile(uint32_t stretches, uint32_t mostBytes)
    {
        std::vector<std::string> lines;
        for (uint32_t i = 0; i < stretches; i++) {
            uint32_t at = 0x10000 * (1 + i % 7) + 0x1000 * i + Random(0x400);
            for (uint32_t left = 1 + Random(mostBytes); left > 0;) {
                const uint32_t length = std::min(left, 1 + Random(Random(4) == 0 ? 255 : 40));
                lines.push_back(
                    Record(0, 4, {static_cast<uint8_t>(at >> 24), static_cast<uint8_t>(at >> 16)}));
                Bytes data(length);
                for (uint8_t &byte : data)
                    byte = Random(8) == 0 ? uint8_t{0xFF} : static_cast<uint8_t>(Random(256));
                lines.back() += Record(at & 0xFFFF, 0, data);
                at += length;
                left -= length;
            }
        }
        std::shuffle(lines.begin(), lines.end(), generator);
        std::string text;
        for (const std::string &line : lines)
            text += line;
        WriteFileText(path, text + ":00000001FF\n");
    }
    static std::string Record(uint32_t offset, uint32_t type, const Bytes &data)
    {
        Bytes all = {static_cast<uint8_t>(data.size()), static_cast<uint8_t>(offset >> 8),
                     static_cast<uint8_t>(offset), static_cast<uint8_t>(type)};
        all.insert(all.end(), data.begin(), data.end());
        std::string text = ":";
        uint8_t sum = 0;
        char digits[3];
        for (const uint8_t byte : all)
            sum = static_cast<uint8_t>(sum - byte);
        all.push_back(sum);
        for (const uint8_t byte : all) {
            snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(byte));
            text += digits;
        }
        return text + "\n";
    }
    Bytes Image() const
    {
        Bytes image(SIM_FLASH_SIZE, 0xFF);
        for (const HEX_Record &record : job.file.records)
            std::memcpy(&image[record.address], &job.file.data[record.dataAt], record.length);
        return image;
    }
    // What the job says about the flash must be so.
    void CheckTruth(const SIM_Loader &loader, const Bytes &before, const std::string &where)
    {
        const Bytes image = Image();
        if (job.flash == LDR_FLASH_UNTOUCHED) {
            EXPECT_TRUE(loader.flash == before) << where;
        }
        if (job.flash == LDR_FLASH_ERASED) {
            EXPECT_TRUE(loader.flash == Bytes(SIM_FLASH_SIZE, 0xFF)) << where;
        }
        if (job.flash == LDR_FLASH_WHOLE) {
            EXPECT_TRUE(loader.flash == image) << where;
        }
        for (size_t i = 0; job.flash == LDR_FLASH_PARTLY && i < job.verified; i++) {
            const HEX_Record &block = job.plan[i];
            EXPECT_EQ(
                0, std::memcmp(&loader.flash[block.address], &image[block.address], block.length))
                << where << " block " << i;
        }
    }
};

TEST_F(Programming, TellsEveryStepAndLeavesTheFileInTheFlash)
{
    MakeFile(6, 3000);
    ASSERT_EQ(0, LDR_Prepare(&job, path));
    const std::string question = LDR_GetQuestion(job, 3);
    for (const std::string &part :
         {std::string("COM3"), path, std::string("0x010"), std::string("bytes)")})
        EXPECT_NE(std::string::npos, question.find(part)) << question;
    LoaderRig rig;
    std::vector<std::string> seen;
    atStep = [&] {
        std::string states;
        for (const LDR_StepState step : job.steps)
            states += "-orDF"[step];
        if (seen.empty() || seen.back() != states)
            seen.push_back(states);
    };
    rig.wire.loader.faults.eraseZeros = 3;
    EXPECT_EQ(0, RunJob(false));
    EXPECT_EQ((std::vector<std::string>{"DDr--", "DDD--", "DDDrr"}), seen);
    EXPECT_EQ(LDR_DONE, job.steps[LDR_STEP_VERIFY]);
    EXPECT_TRUE(rig.wire.loader.flash == Image());
    EXPECT_EQ(job.bytesTotal, job.bytesDone);
    EXPECT_EQ(job.plan.size(), job.verified);
    EXPECT_NE(std::string::npos, LDR_GetResultText(job).find("read back and equal"));
    EXPECT_FALSE(LDR_CanResume(job));

    // Again without erasing: all of it is there, nothing is written.
    job.isErase = false;
    rig.wire.loader.writes = 0;
    EXPECT_EQ(0, RunJob(false));
    EXPECT_EQ(0u, rig.wire.loader.writes);
    // Only what differs is written, and what cannot be reached is found before any write.
    const HEX_Record &last = job.plan.back();
    std::fill_n(rig.wire.loader.flash.begin() + last.address, last.length, uint8_t{0xFF});
    EXPECT_EQ(0, RunJob(false));
    EXPECT_EQ(1u, rig.wire.loader.writes);
    rig.wire.loader.flash[last.address] = static_cast<uint8_t>(~Image()[last.address]);
    std::fill_n(rig.wire.loader.flash.begin() + job.plan[0].address, 1, uint8_t{0xFF});
    EXPECT_EQ(LDR_ERR_NEEDS_ERASE, RunJob(false));
    EXPECT_EQ(last.address, job.difference.address);
    EXPECT_EQ(1u, rig.wire.loader.writes);
    EXPECT_EQ(LDR_FLASH_UNTOUCHED, job.flash);
    EXPECT_EQ(LDR_ERR_DIFFERENT, LDR_Verify(&job, LDR_Progress()));
    EXPECT_EQ(job.plan[0].address, job.difference.address);
}

TEST_F(Programming, FailuresLeaveTheTruthAndNoOtherStep)
{
    MakeFile(3, 1000);
    const std::string good = ReadFileText(path);
    const struct {
        const char *name;
        std::function<void(LoaderRig *)> spoil;
        int result;
        LDR_Flash flash;
        bool canResume;
    } cases[] = {
        {"no loader", [](LoaderRig *r) { r->wire.loader.faults.silentAfter = 0; }, LDR_ERR_TARGET,
         LDR_FLASH_UNTOUCHED, false},
        {"erase silent", [](LoaderRig *r) { r->wire.loader.faults.isEraseSilent = true; },
         LDR_ERR_ERASE, LDR_FLASH_ERASING, false},
        {"erase refused", [](LoaderRig *r) { r->wire.loader.faults.eraseAnswer = 0xE4; },
         LDR_ERR_ERASE, LDR_FLASH_ERASING, false},
        {"cancelled before erasing is over", [this](LoaderRig *) { stopAt = 1; }, LDR_ERR_CANCELLED,
         LDR_FLASH_ERASED, true},
        {"cancelled in the middle", [this](LoaderRig *) { stopAt = 20; }, LDR_ERR_CANCELLED,
         LDR_FLASH_PARTLY, true},
        {"silent in the middle", [](LoaderRig *r) { r->wire.loader.faults.silentAfter = 31; },
         LDR_ERR_WRITE, LDR_FLASH_PARTLY, true},
        {"file changed before", [this](LoaderRig *) { WriteFileText(path, ":00000001FF\n"); },
         LDR_ERR_CHANGED, LDR_FLASH_UNTOUCHED, false},
        {"file gone meanwhile",
         [this](LoaderRig *) { atStep = [this] { std::filesystem::remove(path); }; },
         LDR_ERR_CHANGED, LDR_FLASH_WHOLE, false},
        {"a cell that does not hold",
         [this](LoaderRig *r) {
             atStep = [this, r] {
                 if (job.written == 4)
                     r->wire.loader.flash[job.plan[3].address] ^= 0x10;
             };
         },
         LDR_ERR_DIFFERENT, LDR_FLASH_UNUSABLE, false},
    };
    for (const auto &c : cases) {
        WriteFileText(path, good);
        job = LDR_Job();
        stopAt = 0;
        atStep = nullptr;
        ASSERT_EQ(0, LDR_Prepare(&job, path));
        LoaderRig rig;
        const Bytes before = rig.wire.loader.flash;
        c.spoil(&rig);
        EXPECT_EQ(c.result, RunJob(false)) << c.name << ": " << LDR_GetResultText(job);
        EXPECT_EQ(c.flash, job.flash) << c.name;
        EXPECT_EQ(c.canResume, LDR_CanResume(job)) << c.name;
        CheckTruth(rig.wire.loader, before, c.name);
        for (const LDR_StepState step : job.steps)
            EXPECT_NE(LDR_RUNNING, step) << c.name;
    }
    WriteFileText(path, "x\n");
    EXPECT_EQ(LDR_ERR_PROBLEMS, LDR_Prepare(&job, path));
    LoaderRig rig;
    EXPECT_EQ(LDR_ERR_PROBLEMS, RunJob(false));
    EXPECT_TRUE(rig.wire.sent.empty()) << "nothing is asked of the target for such a file";
}

// The board was changed, or erased by somebody, while the programming was interrupted.
TEST_F(Programming, GoingOnOnAnotherFlashIsRefused)
{
    MakeFile(3, 1000);
    ASSERT_EQ(0, LDR_Prepare(&job, path));
    LoaderRig rig;
    stopAt = 20;
    ASSERT_EQ(LDR_ERR_CANCELLED, RunJob(false));
    ASSERT_GT(job.verified, 3u);
    std::fill(rig.wire.loader.flash.begin(), rig.wire.loader.flash.end(), uint8_t{0xFF});
    rig.wire.loader.writes = 0;
    EXPECT_EQ(LDR_ERR_NEEDS_ERASE, RunJob(true));
    EXPECT_EQ(0u, rig.wire.loader.writes);
    EXPECT_FALSE(LDR_CanResume(job));
    EXPECT_EQ(0, RunJob(false));
    EXPECT_TRUE(rig.wire.loader.flash == Image());
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
        const std::string where = "run " + std::to_string(run);
        MakeFile(1 + Random(4), 1500);
        job = LDR_Job();
        job.isVerify = way == CORRUPT_REQUEST || Random(5) > 0;
        ASSERT_EQ(0, LDR_Prepare(&job, path)) << where;
        LoaderRig rig(static_cast<uint32_t>(run));
        SIM_LoaderFaults &faults = rig.wire.loader.faults;
        int result = -1;
        for (int attempt = 0; result != 0; attempt++) {
            ASSERT_LT(attempt, 20) << where;
            const bool isFaulty = attempt < FAULTY_ATTEMPTS;
            const double share = isFaulty ? 0.02 : 0;
            rig.Replug();
            faults = SIM_LoaderFaults();
            stopAt = way == CANCEL && isFaulty ? 1 + static_cast<int>(Random(60)) : 0;
            rig.wire.bytesLeft =
                way == UNPLUG && isFaulty ? 1 + static_cast<long>(Random(4000)) : -1;
            faults.drop = way == DROP ? share : 0;
            faults.corrupt = way == CORRUPT ? share : 0;
            faults.shorten = way == SHORTEN ? share : 0;
            faults.lengthen = way == LENGTHEN ? share : 0;
            faults.corruptRequest = way == CORRUPT_REQUEST ? share : 0;
            const bool isResume = LDR_CanResume(job);
            const uint32_t erases = rig.wire.loader.erases;
            const Bytes before = rig.wire.loader.flash;
            const LDR_Flash known = job.flash;
            result = RunJob(isResume);
            interrupted += result != 0;
            resumed += isResume;
            erasedAgain +=
                attempt > 0 && rig.wire.loader.erases > erases && known > LDR_FLASH_ERASING;
            EXPECT_FALSE(isResume && rig.wire.loader.erases > erases) << where;
            CheckTruth(rig.wire.loader, before, where);
        }
        EXPECT_TRUE(rig.wire.loader.flash == Image()) << where;
    }
    EXPECT_GE(interrupted, 200);
    EXPECT_GE(resumed, 150) << "an interruption seldom costs an erase";
    EXPECT_GT(erasedAgain, 0) << "a damaged request must cost one";
}

} // namespace
