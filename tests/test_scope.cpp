// The scope's drivers against blocks poked into a target, the whole way from init to a
// recording against the firmware the simulated target has.
#include "scope/capture.h"
#include "scope/scope_v2.h"
#include "scope/scope_v3.h"
#include "scope/session.h"

#include "comm/sysaddr.h"
#include "support/watch_fixture.h"

#include <cmath>

namespace {

std::vector<std::string> said; // status texts

const SCP_View VIEW = {[](const std::string &text) { said.push_back(text); }, nullptr, nullptr};

class Scope : public WatchTest {
protected:
    static constexpr uint32_t BLOCK = 0x5000, RING = 0x24000;

    void SetUp() override
    {
        WatchTest::SetUp();
        said.clear();
        SX_isInitDone = SX_isUploadDone = 0;
        SX_nCh = SX_nVz = SX_cnData = 0;
        SX_anChTyp.fill(SX_I2);
        SX_wSubPd = 1;
    }
    void pokeWord(uint32_t address, unsigned value)
    {
        const uint8_t bytes[2] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)};
        SIM_Poke(target, STATION, address, bytes, 2);
    }
    void pokeLong(uint32_t address, uint32_t value)
    {
        pokeWord(address, value & 0xFFFF);
        pokeWord(address + 2, value >> 16);
    }
    unsigned peekWord(uint32_t address)
    {
        uint8_t bytes[2];
        SIM_Peek(target, STATION, address, bytes, 2);
        return static_cast<unsigned>(bytes[0] | bytes[1] << 8);
    }
    uint32_t peekLong(uint32_t address)
    {
        return peekWord(address) | peekWord(address + 2) << 16;
    }
    // A generation 3 block at BLOCK, its samples at RING.
    void putBlock(unsigned id, unsigned channels, unsigned values)
    {
        addSymbol("PWM_rScope", BLOCK);
        SX_szPrefix = "PWM_rScope";
        pokeWord(BLOCK, id);
        pokeWord(BLOCK + 0x10, values);
        pokeWord(BLOCK + 0x12, channels);
        pokeLong(BLOCK + 0x18, 20000500);
        pokeLong(BLOCK + 0x28, id == 0x20D2 ? 0x90000 : RING / 2);
    }
    // A generation 2 scope from 0x6000 on, samples at 0x7000.
    void putVariables(unsigned channels, unsigned values, bool isExtended = true)
    {
        const char *const names[] = {"cn",  "wTg",   "wTgL",  "wTgM",  "wTgTm",  "aData",   "nVz",
                                     "nCh", "CTgC1", "CTgC2", "fFreq", "wSubPd", "cnSubSmp"};
        SX_szPrefix = "SCP2_";
        uint32_t address = 0x6000;
        for (const char *name : names) {
            const bool isExtension = address >= 0x6000 + 4 * 10;
            if (isExtended || !isExtension)
                addSymbol((SX_szPrefix + name).c_str(),
                          std::string(name) == "aData" ? 0x7000 : address);
            address += 4;
        }
        for (unsigned channel = 1; channel <= channels; ++channel)
            addSymbol((SX_szPrefix + "pSrc" + std::to_string(channel)).c_str(),
                      0x6100 + 2 * channel);
        pokeWord(GetSysAddr("SCP2_nVz"), values);
        pokeWord(GetSysAddr("SCP2_nCh"), channels);
    }
};

TEST_F(Scope, TypesAreReadAsTheTargetSampledThem)
{
    const struct {
        int type;
        uint16_t word, high;
        double value;
    } cases[] = {{SX_I1, 0xFFFE, 0, -2},          {SX_U1, 0x00FE, 0, 254},
                 {SX_I2, 0x8000, 9, -32768},      {SX_U2, 0x8000, 9, 32768},
                 {SX_I4, 0xFFFF, 0xFFFE, -65537}, {SX_U4, 0xFFFF, 0xFFFE, 4294901759.0},
                 {SX_F4, 0x0000, 0xC020, -2.5},   {SX_F2, 0xC020, 0, -2.5},
                 {SX_F2, 0x3F80, 0, 1},           {SX_F2, 0, 0, std::ldexp(1, -127)}};
    for (const auto &c : cases)
        EXPECT_EQ(SX_Value(c.type, c.word, c.high), c.value) << c.type << " " << c.word;
}

TEST_F(Scope, ThirdGenerationIsFoundOrRefused)
{
    ASSERT_TRUE(connect());
    SX_szPrefix = "PWM_rScope";
    EXPECT_EQ(S3_Init(), -1); // no such name
    putBlock(0x20D3, 10, 800);
    ASSERT_EQ(S3_Init(), 0);
    EXPECT_EQ(S3_nErr, 0);
    EXPECT_EQ(S3_isVer166, 0);
    EXPECT_EQ(S3_dwBuffAddr, RING);
    EXPECT_EQ(SX_ffFscp, 20000.5);
    pokeWord(BLOCK, 0x20D2);
    pokeLong(BLOCK + 0x28, 0x90123); // page 9, offset 0x123
    ASSERT_EQ(S3_Init(), 0);
    EXPECT_EQ(S3_dwBuffAddr, 0x24123u);
    const struct {
        uint32_t offset;
        unsigned word;
        int result;
    } refused[] = {{0x00, 0x21D3, -1}, {0x00, 0x20D4, -1}, {0x10, 10, -2},
                   {0x10, 16385, -2},  {0x12, 0, -3},      {0x12, 11, -3}};
    for (const auto &c : refused) {
        const unsigned old = peekWord(BLOCK + c.offset);
        pokeWord(BLOCK + c.offset, c.word);
        EXPECT_EQ(S3_Init(), c.result) << c.offset << " " << c.word;
        EXPECT_EQ(SX_isInitDone, 0);
        EXPECT_EQ(S3_nErr, -1);
        pokeWord(BLOCK + c.offset, old);
    }
    for (const unsigned values : {11u, 16384u}) {
        pokeWord(BLOCK + 0x10, values);
        EXPECT_EQ(S3_Init(), 0) << values;
    }
    for (const uint32_t frequency : {1000u, 1000000000u}) {
        pokeLong(BLOCK + 0x18, frequency);
        ASSERT_EQ(S3_Init(), 0);
        EXPECT_EQ(SX_ffFscp, 1.0) << frequency;
    }
}

TEST_F(Scope, ThirdGenerationRunsWithItsShareInFrontOfTheTrigger)
{
    ASSERT_TRUE(connect());
    putBlock(0x20D3, 4, 100);
    ASSERT_EQ(S3_Init(), 0);
    // Post-trigger count and what it makes of a run.
    const struct {
        double percent;
        unsigned post;
        int control;
    } positions[] = {{100, 0, -101}, {0, 100, -2}, {25, 75, -26}, {99.4, 1, -100}};
    for (const auto &c : positions) {
        ASSERT_EQ(S3_SetTgrPos(c.percent), 0);
        EXPECT_EQ(peekWord(BLOCK + 4), c.post) << c.percent;
        ASSERT_EQ(S3_Run(), 0);
        EXPECT_EQ(static_cast<int16_t>(peekWord(BLOCK + 2)), c.control);
    }
    EXPECT_LT(S3_SetTgrPos(100.6), 0);
    pokeWord(BLOCK + 4, 200);
    ASSERT_EQ(S3_Run(), 0);
    EXPECT_EQ(static_cast<int16_t>(peekWord(BLOCK + 2)), -2);
    ASSERT_EQ(S3_ManTgr(), 0);
    EXPECT_EQ(peekWord(BLOCK + 2), 100u);
    EXPECT_EQ(S3_SetSubPd(0), -1);
    ASSERT_EQ(S3_SetSubPd(4), 0);
    EXPECT_EQ(peekWord(BLOCK + 6), 3u);
    EXPECT_EQ(peekWord(BLOCK + 0x20), 1u);
}

TEST_F(Scope, ThirdGenerationHasATriggerForEveryModeAndType)
{
    ASSERT_TRUE(connect());
    putBlock(0x20D3, 4, 100);
    ASSERT_EQ(S3_Init(), 0);
    // Every mode and slope writes its code and is read back as mode and sign.
    const struct {
        int mode, slope;
        unsigned code;
        int condition;
    } modes[] = {{0, 1, 2, 0},  {1, 1, 3, 2},  {0, 2, 7, 0},    {1, 2, 8, 2},  {0, 4, 5, 1},
                 {1, 4, 6, 3},  {0, 5, 10, 1}, {1, 5, 11, 3},   {0, 6, 12, 0}, {1, 6, 13, 2},
                 {0, 7, 14, 0}, {1, 7, 15, 2}, {2, 0, 0x10, -1}};
    for (const auto &c : modes) {
        ASSERT_EQ(S3_SetTriggerMode(c.mode, c.slope), 0);
        EXPECT_EQ(peekWord(BLOCK + 0x16), c.code) << c.mode << " " << c.slope;
        EXPECT_EQ(S3_GetTgrCond(), c.condition) << c.mode << " " << c.slope;
    }
    EXPECT_EQ(S3_SetTriggerMode(3, 0), -1);
    const struct {
        double level;
        int type;
        uint32_t bits;
    } levels[] = {{-1, SX_I2, 0xFFFFFFFF},
                  {3000000000.0, SX_U4, 0xB2D05E00},
                  {-2.5, SX_F4, 0xC0200000},
                  {1, SX_F2, 0x3F800000}};
    for (const auto &c : levels) {
        ASSERT_EQ(S3_SetTgrLevel(c.level, c.type), 0);
        EXPECT_EQ(peekLong(BLOCK + 8), c.bits) << c.level;
    }
    EXPECT_EQ(S3_SetTgrLevel(3e9, SX_I4), -3);
    EXPECT_EQ(S3_SetTgrLevel(-1, SX_U4), -3);
    EXPECT_EQ(peekLong(BLOCK + 8), 0x3F800000u);
}

TEST_F(Scope, ThirdGenerationAddressesByFormatAndSlot)
{
    ASSERT_TRUE(connect());
    putBlock(0x20D3, 4, 100);
    ASSERT_EQ(S3_Init(), 0);
    SX_anChTyp = {SX_F4, SX_I4, SX_U1, SX_U4};
    uint32_t address = 0;
    EXPECT_EQ(S3_SetChAddr(1, 0x18204), 2);
    EXPECT_EQ(peekLong(BLOCK + 0x2C), 0xC102u);
    EXPECT_EQ(peekLong(BLOCK + 0x30), 0xC103u);
    EXPECT_EQ(S3_SetChAddr(2, 0x1000), 0); // blocked by channel 1, and blocks nobody itself
    EXPECT_EQ(peekLong(BLOCK + 0x30), 0xC103u);
    EXPECT_FALSE(S3_IsChannelBlocked(3));
    EXPECT_EQ(S3_SetChAddr(3, 0x1002), -4); // written all the same
    EXPECT_EQ(S3_GetChAddr(3, &address), 0);
    EXPECT_EQ(address, 0x1002u);
    EXPECT_EQ(S3_SetChAddr(4, 0x1004), 1); // the last: no second slot
    EXPECT_EQ(peekLong(BLOCK + 0x3C), 0u);
    EXPECT_EQ(S3_SetChAddr(5, 0), -1);
    EXPECT_EQ(S3_SetChAddr(0, 0), -1);
    pokeWord(BLOCK, 0x20D2);
    ASSERT_EQ(S3_Init(), 0);
    EXPECT_EQ(S3_SetChAddr(1, 0x27FFE), 2); // the second word lies in the next page
    EXPECT_EQ(peekLong(BLOCK + 0x2C), 0x93FFEu);
    EXPECT_EQ(peekLong(BLOCK + 0x30), 0xA0000u);
    EXPECT_EQ(S3_GetChAddr(1, &address), 0);
    EXPECT_EQ(address, 0x27FFEu);
}

TEST_F(Scope, ThirdGenerationUploadsOldestFirst)
{
    ASSERT_TRUE(connect());
    putBlock(0x20D3, 4, 600);
    ASSERT_EQ(S3_Init(), 0);
    SX_anChTyp = {SX_U2, SX_I4, SX_U2, SX_I4};
    SX_aszChName[0] = std::string(90, 'n');
    // Sample i holds i, -i in two words, and i again; the ring has turned by 7 samples.
    for (unsigned i = 0; i < 600; ++i) {
        const uint32_t at = RING + 8 * ((i + 7) % 600);
        pokeWord(at, i);
        pokeLong(at + 2, 0u - i);
        pokeWord(at + 6, 0xAAAA);
    }
    pokeWord(BLOCK + 0x22, 28);
    const struct {
        int control, result;
    } states[] = {{-5, SX_NOT_TRIGGERED}, {5, SX_SAMPLING}, {0, 0}};
    for (const auto &c : states) {
        pokeWord(BLOCK + 2, static_cast<unsigned>(c.control));
        EXPECT_EQ(S3_ReadData(nullptr), c.result);
    }
    ASSERT_EQ(SX_isUploadDone, 1);
    EXPECT_EQ(SX_aRecords[0].cnSamples, 512);
    EXPECT_EQ(SX_aRecords[0].name, std::string(80, 'n'));
    EXPECT_EQ(SX_aRecords[0].samples[511], 511);
    EXPECT_EQ(SX_aRecords[1].samples[3], -3);
    EXPECT_EQ(SX_aRecords[2].isEnabled, 0);             // its slot is the second word of channel 2
    EXPECT_TRUE(std::isnan(SX_aRecords[3].samples[0])); // half a value is none
    EXPECT_EQ(SX_aRecords[4].isEnabled, 0);
    EXPECT_EQ(SX_awData[4 * 599], 599); // the raw data holds every sample
    // What breaks off leaves the last upload.
    pokeWord(BLOCK + 0x22, 2401);
    EXPECT_EQ(S3_ReadData(nullptr), -4);
    pokeWord(BLOCK + 0x22, 0);
    EXPECT_EQ(S3_ReadData([](uint32_t done, uint32_t) { return done > 0; }), SX_CANCELLED);
    EXPECT_EQ(SX_aRecords[1].samples[3], -3);
    pokeWord(BLOCK + 0x10, 2001);
    ASSERT_EQ(S3_Init(), 0);
    EXPECT_EQ(S3_ReadData(nullptr), -1); // 8004 words
    pokeWord(BLOCK + 0x10, 100);
    ASSERT_EQ(S3_Init(), 0);
    failWith(0, 66);
    EXPECT_EQ(S3_ReadData(nullptr), -2);
}

TEST_F(Scope, SecondGenerationIsFoundByItsVariables)
{
    ASSERT_TRUE(connect());
    SX_szPrefix = "SCP2_";
    EXPECT_EQ(S2_Init(), SX_NO_GENERATION);
    putVariables(16, 11);
    ASSERT_EQ(S2_Init(), 0);
    EXPECT_EQ(S2_IsXt, 1);
    pokeWord(GetSysAddr("SCP2_nCh"), 17);
    EXPECT_EQ(S2_Init(), -3);
    pokeWord(GetSysAddr("SCP2_nCh"), 3);
    pokeWord(GetSysAddr("SCP2_nVz"), 10);
    EXPECT_EQ(S2_Init(), -2);
    pokeWord(GetSysAddr("SCP2_nVz"), 20);
    ASSERT_EQ(S2_Init(), 0);
}

TEST_F(Scope, SecondGenerationHasItsTriggerInTheCode)
{
    ASSERT_TRUE(connect());
    putVariables(3, 20);
    ASSERT_EQ(S2_Init(), 0);
    ASSERT_EQ(S2_SetSubPd(4), 0);
    EXPECT_EQ(peekWord(GetSysAddr("SCP2_wSubPd")), 4u);
    const uint8_t codes[4][2] = {{0xCD, 0xBD}, {0x8D, 0xFD}, {0xAD, 0xDD}, {0xED, 0x9D}};
    for (int condition = 0; condition < 4; ++condition) {
        ASSERT_EQ(S2_SetTriggerMode(condition / 2, 1 - condition % 2), 0);
        EXPECT_EQ(peekWord(GetSysAddr("SCP2_CTgC1")) & 0xFF, codes[condition][0]);
        EXPECT_EQ(peekWord(GetSysAddr("SCP2_CTgC2")) & 0xFF, codes[condition][1]);
        EXPECT_EQ(S2_GetTgrCond(), condition);
    }
    pokeWord(GetSysAddr("SCP2_CTgC2"), 0xBD); // of another pair
    EXPECT_EQ(S2_GetTgrCond(), -1);
    EXPECT_EQ(S2_SetTriggerMode(2, 0), -1);
}

TEST_F(Scope, SecondGenerationReadsItsChannelsRing)
{
    ASSERT_TRUE(connect());
    putVariables(3, 20);
    ASSERT_EQ(S2_Init(), 0);
    // Addresses: near at first, then with page, then with the load instruction.
    SX_anChTyp = {SX_I1, SX_U1, SX_U2};
    EXPECT_EQ(S2_SetChAddr(1, 0x28123), -1); // written, nothing to patch
    EXPECT_EQ(peekWord(0x6102), 0x8123u);
    const unsigned loads[] = {0xF2D2, 0xF2C2, 0xF2F2};
    for (int channel = 1; channel <= 3; ++channel) {
        const std::string number = std::to_string(channel);
        addSymbol(("SCP2_pSrcPg" + number).c_str(), 0x6200 + 2 * static_cast<uint32_t>(channel));
        addSymbol(("SCP2_pSrcInst" + number).c_str(), 0x6300 + 2 * static_cast<uint32_t>(channel));
        EXPECT_EQ(S2_SetChAddr(channel, 0x28123), 1);
        EXPECT_EQ(peekWord(0x6300 + 2 * static_cast<uint32_t>(channel)), loads[channel - 1]);
    }
    EXPECT_EQ(peekWord(0x6102), 0x123u);
    EXPECT_EQ(peekWord(0x6202), 0xAu);
    uint32_t address = 0;
    EXPECT_EQ(S2_GetChAddr(1, &address), 0);
    EXPECT_EQ(address, 0x28123u);
    // The ring is filled downwards: the word below the newest is the oldest.
    for (unsigned k = 0; k < 60; ++k)
        pokeWord(0x7000 + 2 * ((40 + 60 - 1 - k) % 60), 1000 * (k % 3) + k / 3);
    pokeWord(GetSysAddr("SCP2_cn"), 80);
    ASSERT_EQ(S2_ReadData(nullptr), 0);
    EXPECT_EQ(SX_aRecords[0].samples[0], 0);
    EXPECT_EQ(SX_aRecords[2].samples[19], 2019);
    pokeWord(GetSysAddr("SCP2_cn"), 120);
    EXPECT_EQ(S2_ReadData(nullptr), -4);
}

TEST_F(Scope, SessionRefusesWhatGenerationTwoCannotHold)
{
    ASSERT_TRUE(connect());
    putVariables(2, 20, false);
    SCP_Setup setup;
    setup.id = "SCP2_";
    setup.channels[0] = {true, "[8002]", SX_I2, "", 1, 0}; // no instruction to patch: words are
    ASSERT_EQ(SCP_Init(&setup, VIEW), 0) << said.back();   // sampled all the same
    const struct {
        double level;
        int slope, result;
        unsigned word;
    } levels[] = {{32767, 1, 0, 0x7FFF}, {32768, 1, -1, 0},    {-32768, 1, 0, 0x8000},
                  {-32769, 1, -1, 0},    {-0.5, 1, 0, 0xFFFF}, {65535, 0, 0, 0xFFFF},
                  {65536, 0, -1, 0},     {-1, 0, -1, 0}};
    for (const auto &c : levels) {
        setup.level = c.level;
        setup.slope = c.slope;
        EXPECT_EQ(SCP_SetTrigger(setup, VIEW), c.result) << c.level;
        if (c.result == 0)
            EXPECT_EQ(peekWord(GetSysAddr("SCP2_wTgL")), c.word) << c.level;
        else
            EXPECT_EQ(said.back(), "Error (trigger level not set/2).") << c.level;
    }
    EXPECT_EQ(SCP_SetSubPeriod(setup, VIEW), 0) << "every sample is what it keeps";
    setup.subPd = 2;
    EXPECT_EQ(SCP_SetSubPeriod(setup, VIEW), -1);
    setup.channels[1] = {true, "[8004]", SX_U1, "", 1, 0};
    EXPECT_EQ(SCP_SetChannels(setup, VIEW), -1) << "a byte would be sampled as a word";
}

TEST_F(Scope, ARecordingIsOfWhatTheTargetWasToldUntilItsEnd)
{
    ASSERT_TRUE(connect());
    putVariables(1, 20);
    SCP_Setup setup;
    const auto tell = [&](int period) {
        setup.subPd = period;
        EXPECT_EQ(SCP_SetSubPeriod(setup, VIEW), 0) << said.back();
        return SCP_GetRunSetup().subPd;
    };
    setup.id = "none"; // another scope: what an earlier one was run with is forgotten
    (void)SCP_Init(&setup, VIEW);
    setup.id = "SCP2_";
    ASSERT_EQ(SCP_Init(&setup, VIEW), 0) << said.back();
    EXPECT_EQ(tell(2), 2) << "nothing was run: what was told last";
    ASSERT_EQ(SCP_Run(VIEW), 0);
    EXPECT_EQ(SCP_GetState(), SCP_ARMED);
    EXPECT_EQ(tell(3), 3) << "it samples by this now";
    pokeWord(GetSysAddr("SCP2_wTg"), 0);
    ASSERT_EQ(SCP_GetState(), SCP_COMPLETE);
    EXPECT_EQ(tell(5), 3);
    ASSERT_EQ(SCP_Init(&setup, VIEW), 0);
    EXPECT_EQ(SCP_GetRunSetup().subPd, 3) << "the same scope holds the same recording";
    ASSERT_EQ(SCP_Snap(VIEW), 0); // runs with what it was told
    EXPECT_EQ(SCP_GetRunSetup().subPd, 5);
    STATION = 2; // of its scope nothing is known
    setup.subPd = 7;
    (void)SCP_Init(&setup, VIEW);
    EXPECT_EQ(SCP_GetRunSetup().subPd, 7);
}

// --- the whole way -------------------------------------------------------------------------

class ScopeSession : public Scope {
protected:
    SCP_Setup setup;

    void SetUp() override
    {
        Scope::SetUp();
        options.demo = true;
    }
    void waitFor(SCP_State state)
    {
        for (int looks = 0; looks < 20000 && SCP_GetState() != state; ++looks) {
        }
        ASSERT_EQ(SCP_GetState(), state);
    }
    // Runs, waits, uploads; the recording.
    SCP_Capture record()
    {
        EXPECT_EQ(SCP_SetAll(setup, VIEW), 0) << said.back();
        EXPECT_EQ(SCP_Run(VIEW), 0);
        waitFor(SCP_COMPLETE);
        EXPECT_EQ(SCP_Upload(VIEW), 0) << said.back();
        return SCP_MakeCapture(SCP_GetRunSetup());
    }
    void addV2Symbols()
    {
        const char *const names[] = {"cn", "wTg", "wTgL", "wTgM", "wTgTm", "nVz", "nCh"};
        for (uint32_t i = 0; i < 5; ++i)
            addSymbol((std::string("SCP2_") + names[i]).c_str(), 0x9000 + 2 * i);
        addSymbol("SCP2_nVz", 0x900A);
        addSymbol("SCP2_nCh", 0x900C);
        addSymbol("SCP2_CTgC1", 0x900E);
        addSymbol("SCP2_CTgC2", 0x900F);
        addSymbol("SCP2_fFreq", 0x9010);
        addSymbol("SCP2_wSubPd", 0x9014);
        addSymbol("SCP2_cnSubSmp", 0x9016);
        addSymbol("SCP2_aData", 0x9200);
        const char *const rows[] = {"pSrc", "pSrcPg", "pSrcInst"};
        for (uint32_t row = 0; row < 3; ++row) {
            for (uint32_t channel = 1; channel <= 4; ++channel)
                addSymbol(("SCP2_" + std::string(rows[row]) + std::to_string(channel)).c_str(),
                          0x901E + 0x10 * row + 2 * channel);
        }
    }
};

TEST_F(ScopeSession, TriggersWhereTheSignalPassesTheLevel)
{
    ASSERT_TRUE(connect());
    addSymbol("nFast", 0x8036);
    addSymbol("fFast", 0x803C);
    addSymbol("_nPhaseA", 0x182B0);
    addV2Symbols();
    addSymbol("SCP3_rScope", 0x9100);
    addSymbol("PWM_rScope", 0x19000);
    const struct {
        const char *id, *place;
        int version, type, mode;
        double level;
        size_t samples;
    } cases[] = {{"SCP2_", "nFast", 2, SX_I2, 0, 400, 200},
                 {"SCP2_", "nFast", 2, SX_I2, 1, -300, 200},
                 {"SCP3_rScope", "nFast", 3, SX_I2, 1, 250, 500},
                 {"SCP3_rScope", "fFast", 3, SX_F4, 0, 0.5, 500},
                 {"PWM_rScope", "_nPhaseA", 3, SX_I2, 0, -700, 1000}};
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.id) + " " + c.place + " " + std::to_string(c.mode));
        setup = SCP_Setup();
        setup.id = c.id;
        setup.channels[0] = {true, c.place, c.type, "V", 1, 0};
        setup.channels[2] = {true, "[8002]", SX_U2, "", 1, 0}; // counts milliseconds
        setup.mode = c.mode;
        setup.level = c.level;
        setup.position = 25;
        setup.subPd = 2;
        ASSERT_EQ(SCP_Init(&setup, VIEW), 0) << said.back();
        EXPECT_EQ(SX_nVer, c.version);
        setup.slope = SCP_SlopeOf(c.type);
        const SCP_Capture capture = record();
        ASSERT_EQ(capture.traces.size(), 2u);
        const std::vector<double> &signal = capture.traces[0].samples;
        ASSERT_EQ(signal.size(), c.samples);
        EXPECT_EQ(capture.rate, 2500);
        EXPECT_EQ(capture.triggerAt, static_cast<int>(c.samples / 4) - 1);
        const auto at = static_cast<size_t>(capture.triggerAt);
        EXPECT_EQ(SCP_TimeOf(capture, at), 0);
        // The sample at time 0 and the one before it lie on either side of the level.
        const double before = signal[at - 1], after = signal[at];
        EXPECT_TRUE(c.mode == 0 ? before < c.level && after >= c.level
                                : before > c.level && after <= c.level)
            << before << " " << after;
        // No sample is lost, doubled or out of order: the counter goes on by 0.4 ms a sample.
        const std::vector<double> &counter = capture.traces[1].samples;
        for (size_t i = 1; i < counter.size(); ++i) {
            const double passed = std::fmod(counter[i] - counter[0] + 65536, 65536);
            ASSERT_NEAR(passed, 0.4 * static_cast<double>(i), 1.01) << i;
        }
    }
}

TEST_F(ScopeSession, SaysWhatEachStepCameTo)
{
    ASSERT_TRUE(connect());
    addSymbol("nFast", 0x8036);
    addSymbol("SCP3_rScope", 0x9100);
    setup.id = "SCP3_rScope";
    setup.channels[0] = {true, "nFast", SX_I2, "", 1, 0};
    ASSERT_EQ(SCP_Init(&setup, VIEW), 0);
    setup.channels[1] = {true, "nNowhere", SX_I2, "", 1, 0};
    EXPECT_EQ(SCP_SetChannels(setup, VIEW), -1);
    EXPECT_EQ(said.back(), "Error: Channel X2 address unknown.");
    setup.channels[1].place = "[1000]";
    setup.channels[1].type = SX_U1;
    EXPECT_EQ(SCP_SetChannels(setup, VIEW), -1);
    EXPECT_EQ(said.back(), "Error: could not set channel X2.");
    setup.subPd = 0;
    EXPECT_EQ(SCP_SetSubPeriod(setup, VIEW), -1);
    failWith(8, 70);
    EXPECT_EQ(SCP_Run(VIEW), -1);
    EXPECT_EQ(said.back(), "Error (run).");
    setup.id = "nowhere";
    EXPECT_LT(SCP_Init(&setup, VIEW), 0);
    EXPECT_EQ(said.back(), "Init error (1).");
    EXPECT_EQ(SCP_Upload(VIEW), -1);
    EXPECT_EQ(said.back(), "Upload error.");
}

} // namespace
