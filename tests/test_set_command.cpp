// `set` as a user types it: which bytes arrive where, and what is refused before anything is
// sent. Also the type map's command.
#include "support/console_rig.h"

#include "symbols/typemap.h"

namespace {

struct SetCommand : ConsoleRig {
    void SetUp() override
    {
        ConsoleRig::SetUp();
        initRgMap(Procesor);
        LoadMap("08140H   awTable;08160H   wEnd;08002H   nCount;08004H   stMotor;08102H   byMode;"
                "08103H   flags;08105H   szName;08200H   DRV_fRatio;08210H   afCurve;08300H   misc;"
                "08310H   pwm;08320H   nnEdge;08323H   byNext");
    }
    void LoadMap(const std::string &symbols)
    {
        std::string text, symbol;
        for (std::istringstream list(symbols); std::getline(list, symbol, ';');)
            text += symbol + std::string(46 - symbol.size(), ' ') + "NDATA\n";
        WriteFileText("set.m66", text);
        ASSERT_TRUE(Has(Run("m set.m66"), "Nodes:"));
    }
    void LoadTypes()
    {
        WriteFileText("set.tmf", "## 4 VARS\n1: 'awTable' _@0x20000002_@0x20000008_@0x142\n"
                                 "2: 'stMotor' _@0x38000001\n3: 'misc' _@0x422\n"
                                 "4: 'flags' _@0xC2\n## 0 TYPES\n## 1 STRUCTS\n# 1 / 2:\n"
                                 "  'nSpeed' _@0x20000003_@0x122\n  'fLimit' _@0x204\n");
        EXPECT_EQ(Run("tm set.tmf"),
                  "Type map: set.tmf, 4 variables, 1 structures.\ntm set.tmf -> OK!\n");
    }
    std::vector<uint8_t> PeekAt(int station, uint32_t address, size_t count)
    {
        std::vector<uint8_t> bytes(count);
        SIM_Peek(target, station, address, bytes.data(), count);
        return bytes;
    }
};

struct Written {
    const char *line, *shown;
    uint32_t address;
    std::vector<uint8_t> bytes; // of the station named, or station 1
    int station = 1;
};

TEST_F(SetCommand, ValuesArriveByTheirType)
{
    const Written byPrefix[] = {
        {"nCount = -2", "nCount = -2 (i2 at 0x008002)", 0x8002, {0xFE, 0xFF}},
        {"byMode=0FFH", "byMode = 255 (u1 at 0x008102)", 0x8102, {0xFF}},
        {"byMode = 0BH", "byMode = 11 (u1 at 0x008102)", 0x8102, {11}},
        {"DRV_fRatio = -1.5", "DRV_fRatio = -1.5 (f at 0x008200)", 0x8200, {0, 0, 0xC0, 0xBF}},
        {"awTable[3] = 0x1234", "awTable[3] = 4660 (u2 at 0x008146)", 0x8146, {0x34, 0x12}},
        {"afCurve[ 2 ] = 1e3", "afCurve[ 2 ] = 1000 (f at 0x008218)", 0x8218, {0, 0, 0x7A, 0x44}},
        {"nCount+4 = 5", "nCount+4 = 5 (i2 at 0x008006)", 0x8006, {5, 0}},
        {"(u4) nCount = 65536", "nCount = 65536 (u4 at 0x008002)", 0x8002, {0, 0, 1, 0}},
        {"( word ) flags = 255", "flags = 255 (u1 at 0x008103)", 0x8103, {255}},
        {"(i8) misc = -2",
         "misc = -2 (i8 at 0x008300)",
         0x8300,
         {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
        {"(x2) $8300 = 12ab", "$8300 = 12ABh (x2 at 0x008300)", 0x8300, {0xAB, 0x12}},
        {"DPP1 = 7", "DPP1 = 7 (u2 at 0x00FE02)", 0xFE02, {7, 0}},
        {"3:nCount = 9", "3:nCount = 9 (i2 at 0x008002, station 3)", 0x8002, {9, 0}, 3},
        {"(u1) 3 : byMode = 8", "3 : byMode = 8 (u1 at 0x008102, station 3)", 0x8102, {8}, 3}};
    const Written byTypes[] = {
        {"stMotor.nSpeed[2] = -5", "stMotor.nSpeed[2] = -5 (i2 at 0x008008)", 0x8008, {0xFB, 0xFF}},
        {"stMotor.fLimit = 2", "stMotor.fLimit = 2 (f at 0x00800A)", 0x800A, {0, 0, 0, 0x40}},
        {"awTable[1][7] = 1", "awTable[1][7] = 1 (u2 at 0x00815E)", 0x815E, {1, 0}},
        {"flags = 3", "flags = 3 (u1 at 0x008103)", 0x8103, {3}}};
    const auto check = [this](const Written &c) {
        EXPECT_EQ(Run(std::string("set ") + c.line),
                  c.shown + std::string("\nset ") + c.line + " -> OK!\n");
        EXPECT_EQ(PeekAt(c.station, c.address, c.bytes.size()), c.bytes) << c.line;
    };
    for (const Written &c : byPrefix)
        check(c);
    LoadTypes();
    for (const Written &c : byTypes)
        check(c);
    EXPECT_EQ(PeekAt(1, 0x8002, 2), (std::vector<uint8_t>{0, 0})) << "station 3's, not ours";
    EXPECT_EQ(Run("set 3:nCount"),
              "3:nCount = 9 (i2 at 0x008002, station 3)\nset 3:nCount -> OK!\n");
    EXPECT_EQ(STATION, 1);
}

TEST_F(SetCommand, RefusesBeforeAnythingIsSent)
{
    const struct {
        const char *line, *reason;
    } cases[] = {{"nCount = 32768", "'32768' is out of range: -32768 to 32767."},
                 {"nCount = -32769", "out of range"},
                 {"(word) nCount = 300", "'300' is out of range: 0 to 255."},
                 {"byMode = 1.5", "is not a value of this item"},
                 {"byMode = nCount", "is not a value of this item"},
                 {"DRV_fRatio = 1e39", "out of range"},
                 {"nCount =", "write a name, or name = value."},
                 {"nCount more = 1", "write a name, or name = value."},
                 {"nCount[2 = 1", "write a name, or name = value."},
                 {"= 1", "write a name, or name = value."},
                 {"nobody = 1", "nobody: no loaded map knows this name."},
                 {"misc = 1", "its type is not known: say it, as (u2) misc."},
                 {"(f2) misc = 1", "'f2' is no type"},
                 {"szName = 1", "texts cannot be set"},
                 {"flags = 1", "as f it would run into szName: say the type"},
                 {"nnEdge = 1", "as i4 it would run into byNext: say the type"},
                 {"awTable[16] = 1", "it would run into wEnd"},
                 {"$8300 = 1", "an address has no type"},
                 {"(u2) $FFFFFF = 1", "its last byte lies beyond"},
                 {"(u2) $1000000 = 1", "the target has no such address."},
                 {"16:nCount = 1", "the station is 0 to 15."},
                 {"(b) &$10 = 1", "a TMS320 value has four bytes."}};
    const uint64_t before = SIM_GetCounters(target).requests;
    for (const auto &c : cases) {
        const std::string shown = Run(std::string("set ") + c.line);
        EXPECT_TRUE(Has(shown, c.reason));
        EXPECT_EQ(shown.substr(0, 13), "ERROR - set: ") << shown;
    }
    LoadTypes();
    for (const auto &[line, reason] : std::vector<std::pair<std::string, std::string>>{
             {"stMotor = 1", "it is a structure"},
             {"awTable[1] = 1", "it is an array: name an element, as awTable[1][0]."},
             {"awTable[2][0] = 1", "no such member or element"},
             {"stMotor.nSpeed[3] = 1", "no such member or element"},
             {"stMotor.nNone = 1", "no such member or element"}}) {
        const std::string shown = Run("set " + line);
        EXPECT_TRUE(Has(shown, reason));
    }
    EXPECT_EQ(SIM_GetCounters(target).requests, before);
}

// A second processor behind the station, and the other family with its word addresses on the
// other protocol; both at another station than the selected one, too.
TEST_F(SetCommand, ReachesBothKindsOfTms320)
{
    EXPECT_EQ(Run("set (f) &$400 = -1"),
              "&$400 = -1 (f at TMS320 word 0x000400)\nset (f) &$400 = -1 -> OK!\n");
    EXPECT_EQ(SIM_PeekTMS(target, 1, 0x400), 0xFF800000u) << "in its own float format";
    Run("set (i2) 2:&$401 = -7");
    EXPECT_EQ(SIM_PeekTMS(target, 2, 0x401), 0xFFFFFFF9u) << "whole words";
    EXPECT_EQ(SIM_PeekTMS(target, 1, 0x401), 0u);
    EXPECT_EQ(STATION, 1);
    WriteFileText("set.m28xt", "0000C002   _nSpeed\n0000C004   _fTorque\n0000C010   _abyText\n");
    Run("mt set.m28xt");
    EXPECT_EQ(szMapFileName, "set.m66") << "the one beside it is not the map to load again";
    EXPECT_EQ(Run("set 2:&fTorque = 2").find("2:&fTorque = 2 (f at TMS320 word 0x00C004, st"), 0u);

    ChangeProtocol();
    for (const int processor : {CPU_F283XX, CPU_F2803X}) {
        Procesor = processor;
        initRgMap(Procesor);
        WriteFileText("set.m28xt",
                      "0000C002   _nSpeed\n0000C004   _fTorque\n0000C010   _abyText\n");
        Run("mt set.m28xt");
        EXPECT_EQ(szMapFileName, "set.m28xt") << "what the settings save";
        EXPECT_EQ(Run("set nSpeed = -3"),
                  "nSpeed = -3 (i2 at word 0x00C002)\nset nSpeed = -3 -> OK!\n");
        EXPECT_EQ(Run("set 4:fTorque = 0.5"), "4:fTorque = 0.5 (f at word 0x00C004, station 4)\n"
                                              "set 4:fTorque = 0.5 -> OK!\n");
        Run("set abyText[1] = 65");
        EXPECT_TRUE(Has(Run("set ePWM1_TBCTL = 1"), "(u2 at word 0x006800)"));
        EXPECT_TRUE(Has(Run("set eQEP1_QPOSCNT = 1"), "its type is not known"));
        EXPECT_EQ(PeekAt(1, 0x18004, 2), (std::vector<uint8_t>{0xFD, 0xFF}));
        EXPECT_EQ(PeekAt(4, 0x18008, 4), (std::vector<uint8_t>{0, 0, 0, 0x3F})) << "IEEE here";
        EXPECT_EQ(PeekAt(1, 0x18022, 2), (std::vector<uint8_t>{65, 0})) << "one word a character";
        SIM_Poke(target, 1, 0x18004, "\0\0\0\0", 4);
        SIM_Poke(target, 4, 0x18008, "\0\0\0\0", 4);
    }
}

TEST_F(SetCommand, SaysWhatTheTargetMadeOfIt)
{
    SIMT_Stop(RIG_PORT, target);
    target = SIMT_Start(RIG_PORT, {}); // its variables are alive
    ASSERT_NE(target, nullptr);
    LoadMap("08002H   wCount");
    const std::string shown = Run("set wCount = 7");
    EXPECT_EQ(shown.find("ERROR - set: wCount: Written 7, but the target now holds "), 0u) << shown;
    UCM_recS.tries = 0;
    SIM_SetErrorCode(target, 8, 65);
    EXPECT_TRUE(Has(Run("set wCount = 7"), "not written: target error code 65"));
    SIM_SetErrorCode(target, 8, 0);
    SIM_SetErrorCode(target, 0, 66);
    EXPECT_TRUE(Has(Run("set wCount = 7"), "Written, but the target's value could not be read: "));
    SIM_SetErrorCode(target, 8, 65);
    WriteFileText("s.scr", "set wCount = 1\nstation 2\n");
    EXPECT_EQ(ExecMonScript("s.scr", PANEL_CONSOLE), -3);
    SIM_Options silent;
    silent.silentAfter = 0;
    SIM_SetFaults(target, silent);
    EXPECT_TRUE(Has(Run("set wCount"), "wCount: it could not be read: no answer."));
}

TEST_F(SetCommand, CompletesMembersRegistersAndStations)
{
    LoadTypes();
    const auto complete = [this](const std::string &typed) {
        HL_SetUserVal(PANEL_CONSOLE, CONSOLE_INPUT, typed);
        HL_Key(PANEL_CONSOLE, CONSOLE_INPUT, KEY_TAB);
        return Field();
    };
    EXPECT_EQ(complete("set nC"), "set nCount ");
    EXPECT_EQ(complete("set (u2)3:byM"), "set (u2)3:byMode ");
    EXPECT_EQ(complete("set stMotor.f"), "set stMotor.fLimit ");
    EXPECT_EQ(complete("set DPP"), "set DPP");
    EXPECT_EQ(complete("set d"), "set D") << "DPP0 and DRV_fRatio";
    EXPECT_EQ(complete("set p"), "set p") << "PSW and pwm: nothing typed is lost";
    LoadMap("08002H   nOther"); // the members of the old map go with it
    EXPECT_EQ(complete("set stMotor.f"), "set stMotor.f");
}

} // namespace
