// The debugger window over the demo target: code by name and by jumps, live registers with
// their bits, stack, memory, operands; nothing shown that was not read and proven.
#include "code/debugger.h"
#include "code/live_reads.h"
#include "code/register_groups.h"
#include "comm/grouping.h"
#include "support/console_rig.h"

#include <set>

namespace {

constexpr int PANEL = PANEL_DEBUGGER;

struct Debugger : ConsoleRig {
    void SetUp() override
    {
        ConsoleRig::SetUp();
        SIMT_Stop(RIG_PORT, target);
        target = SIMT_Start(RIG_PORT, SIM_Options()); // with the demo's core and program
        initRgMap(CPU_C167);
        for (const auto &[address, name] : {std::make_pair(0x8002u, "wCount"),
                                            {0x8140u, "awTable"},
                                            {0x21000u, "Main"},
                                            {0x21020u, "Scale"}})
            AddMapVar(address, name);
        SortMapByName();
        SortMapNdxByAddr();
        openStruct = OPEN_MAP_FILE;
        HL_ClickMenu(ITEM_DEBUGGER);
        CODE_DebuggerOpened();
    }
    void TearDown() override
    {
        HL_ClosePanel(PANEL);
        STATION = 7; // what is shown goes with the station
        CODE_DebuggerChanged();
    }
    void SwitchOn()
    {
        HL_SetDefaultAnswer(HL_ANSWER_YES);
    }
    // The texts of a line's cells with "|" between them.
    static std::string GetLine(int list, int line)
    {
        std::vector<UI_Cell> cells;
        std::string text;
        GetListCells(PANEL, list, line, &cells);
        for (const UI_Cell &cell : cells)
            text += (text.empty() ? "" : "|") + cell.text;
        return text;
    }
    static unsigned GetStyle(int list, int line, size_t column)
    {
        std::vector<UI_Cell> cells;
        GetListCells(PANEL, list, line, &cells);
        return column < cells.size() ? cells[column].style : ~0u;
    }
    static int Count(int list)
    {
        int count = -1;
        GetNumListItems(PANEL, list, &count);
        return count;
    }
    void GoTo(const std::string &place)
    {
        HL_SetUserVal(PANEL, DEBUG_PLACE, place);
        HL_CommitControl(PANEL, DEBUG_PLACE);
    }
    void Choose(const std::string &group)
    {
        const std::vector<std::string> labels = HL_GetLabels(PANEL, DEBUG_GROUP);
        for (size_t i = 0; i < labels.size(); ++i) {
            int value = 0;
            GetValueFromIndex(PANEL, DEBUG_GROUP, static_cast<int>(i), &value);
            if (labels[i] == group)
                HL_SetUserVal(PANEL, DEBUG_GROUP, value);
        }
        HL_CommitControl(PANEL, DEBUG_GROUP);
    }
};

TEST_F(Debugger, FollowsJumpsAndComesBack)
{
    SwitchOn();
    GoTo("Main");
    EXPECT_EQ(100, Count(DEBUG_CODE));
    EXPECT_EQ(
        0u,
        GetLine(DEBUG_CODE, 0).find("021000|F2 F4 02 80|mov r4, 8002h|Main:  008002 wCount|r4="));
    HL_SelectLine(PANEL, DEBUG_CODE, 0);
    EXPECT_EQ(1, UiAttribute(PANEL, DEBUG_FOLLOW, ATTR_DIMMED));
    HL_SelectLine(PANEL, DEBUG_CODE, 4); // calls
    EXPECT_EQ(0, UiAttribute(PANEL, DEBUG_FOLLOW, ATTR_DIMMED));
    HL_Key(PANEL, DEBUG_CODE, KEY_RIGHT);
    EXPECT_EQ("Scale", UiText(PANEL, DEBUG_PLACE));
    EXPECT_EQ(0u, GetLine(DEBUG_CODE, 0).find("021020|D7 40 02 00|extp #002h, #1|Scale:"));
    HL_Key(PANEL, DEBUG_CODE, KEY_LEFT);
    EXPECT_EQ("Main", UiText(PANEL, DEBUG_PLACE));
    EXPECT_EQ(4, UiSelected(PANEL, DEBUG_CODE));
    EXPECT_EQ(1, UiAttribute(PANEL, DEBUG_BACK, ATTR_DIMMED));
    HL_CommitControl(PANEL, DEBUG_MORE);
    EXPECT_EQ(200, Count(DEBUG_CODE));
    GoTo("$21001"); // code stands at even addresses
    EXPECT_EQ(0u, GetLine(DEBUG_CODE, 0).find("021000|"));
    GoTo("nothing");
    EXPECT_EQ("'nothing' is no address, and no loaded map knows such a name.",
              UiText(PANEL, DEBUG_MESSAGE));
    EXPECT_EQ(0u, GetLine(DEBUG_CODE, 0).find("021000|")) << "what is shown stays";
}

TEST_F(Debugger, ShowsRegistersStackAndMemory)
{
    SwitchOn();
    GoTo("Main");
    EXPECT_EQ("R5|0500|1280|", GetLine(DEBUG_REGISTERS, 5));
    EXPECT_EQ("PSW|0808|2056|Z IEN ILVL=0", GetLine(DEBUG_REGISTERS, 16));
    EXPECT_EQ("FBF4  SP|1012|4114", GetLine(DEBUG_STACK, 0));
    EXPECT_EQ(6, Count(DEBUG_STACK));
    HL_SetUserVal(PANEL, DEBUG_MEM_PLACE, std::string("awTable"));
    HL_CommitControl(PANEL, DEBUG_MEM_PLACE);
    EXPECT_EQ(0u, GetLine(DEBUG_MEMORY, 0).find("008140|00 00 01 00 04 00 09 00"));
    Choose("Serial");
    std::set<std::string> names;
    for (int i = 0; i < Count(DEBUG_REGISTERS); ++i) {
        const std::string line = GetLine(DEBUG_REGISTERS, i);
        names.insert(line.substr(0, line.find('|')));
        // What a read takes from the peripheral is left alone until somebody asks for it.
        if (line.compare(0, 7, "S0RBUF|") != 0)
            continue;
        EXPECT_EQ("S0RBUF|-", line);
        HL_SelectLine(PANEL, DEBUG_REGISTERS, i);
        HL_Event(PANEL, DEBUG_REGISTERS, EVENT_COMMIT, 0);
        EXPECT_EQ("S0RBUF|0000|0|", GetLine(DEBUG_REGISTERS, i));
    }
    EXPECT_EQ(1u, names.count("S0CON"));
    EXPECT_EQ(1u, names.count("SSCTB"));
    EXPECT_EQ(0u, names.count("T3"));
    // Changed values are marked, for one refresh.
    Choose("System");
    int dpp0 = 0;
    while (GetLine(DEBUG_REGISTERS, dpp0).compare(0, 5, "DPP0|") != 0)
        ASSERT_LT(++dpp0, Count(DEBUG_REGISTERS));
    const uint8_t page[] = {9, 0};
    SIM_Poke(target, STATION, 0xFE00, page, sizeof page);
    HL_FireTimer(PANEL, DEBUG_TIMER);
    EXPECT_EQ("DPP0|0009|9|", GetLine(DEBUG_REGISTERS, dpp0));
    EXPECT_EQ(unsigned{UIS_CHANGED}, GetStyle(DEBUG_REGISTERS, dpp0, 1));
    HL_FireTimer(PANEL, DEBUG_TIMER);
    EXPECT_EQ(unsigned{UIS_NORMAL}, GetStyle(DEBUG_REGISTERS, dpp0, 1));
}

// Of a byte one byte, of a bit the bit; what was typed as odd is the instruction it lies in.
TEST_F(Debugger, ShowsWhatOperandsHold)
{
    const uint8_t program[] = {0xF3, 0xF0, 0x00, 0x9F, 0x3F, 0x00}; // movb rl0, 9F00h; bset fd00h.3
    const uint8_t word[] = {0x34, 0x12}, bits[] = {0x08, 0x00};
    SIM_Poke(target, STATION, 0x22000, program, sizeof program);
    SIM_Poke(target, STATION, 0x9F00, word, sizeof word);
    SIM_Poke(target, STATION, 0xFD00, bits, sizeof bits);
    SwitchOn();
    GoTo("$22001");
    HL_FireTimer(PANEL, DEBUG_TIMER);
    const std::string byteLine = GetLine(DEBUG_CODE, 0), bitLine = GetLine(DEBUG_CODE, 1);
    EXPECT_EQ(0u, byteLine.find("022000|"));
    EXPECT_EQ(", 34", byteLine.substr(byteLine.size() - 4)) << byteLine;
    EXPECT_EQ("|1", bitLine.substr(bitLine.size() - 2)) << bitLine;
}

TEST_F(Debugger, SaysWhatCannotBeRead)
{
    SwitchOn();
    GoTo("Main");
    SIM_Options faults;
    faults.silentAfter = 0;
    SIM_SetFaults(target, faults);
    HL_FireTimer(PANEL, DEBUG_TIMER);
    EXPECT_EQ("Not read: no answer.", UiText(PANEL, DEBUG_MESSAGE));
    EXPECT_EQ(unsigned{UIS_DIM}, GetStyle(DEBUG_REGISTERS, 0, 1));
    for (int line = 0; line < Count(DEBUG_CODE); ++line)
        EXPECT_EQ('|', GetLine(DEBUG_CODE, line).back()) << "operands have no values any more";
    const uint64_t requests = SIM_GetCounters(target).requests;
    HL_FireTimer(PANEL, DEBUG_TIMER);
    EXPECT_EQ(requests, SIM_GetCounters(target).requests) << "a silent target gets a pause";
    Procesor = CPU_F283XX;
    initRgMap(Procesor);
    CODE_DebuggerChanged();
    EXPECT_EQ(0, Count(DEBUG_CODE));
    EXPECT_TRUE(Has(UiText(PANEL, DEBUG_MESSAGE), "cannot be shown"));
}

// Every register in one group, and nothing read along that must not be.
TEST_F(Debugger, GroupsAndPlansItsReads)
{
    for (const int processor : {CPU_C166, CPU_C167, CPU_F283XX, CPU_F2803X}) {
        Procesor = processor;
        initRgMap(processor);
        std::multiset<std::string> names;
        CODE_LiveReads all;
        std::set<uint32_t> touchy;
        for (const CODE_RegisterGroup &group : CODE_GetRegisterGroups()) {
            uint32_t last = 0;
            for (const CODE_Register &row : group.registers) {
                EXPECT_LE(last, row.address) << row.name;
                last = row.address;
                names.insert(row.name);
                if (row.isTouchy)
                    touchy.insert(row.address);
                else
                    CODE_WantLive(&all, row.address, 2);
            }
        }
        EXPECT_EQ(static_cast<size_t>(nNodes166), names.size());
        EXPECT_EQ(names.size(), std::set<std::string>(names.begin(), names.end()).size());
        EXPECT_GE(touchy.size(), 3u) << processor;
        for (const CODE_LivePiece &piece : CODE_PlanLive(all)) {
            EXPECT_LE(piece.size, UCM_ReadWire(VR_nProtocol).blockMax);
            for (const uint32_t address : touchy)
                EXPECT_FALSE(address + 1 >= piece.address && address < piece.address + piece.size)
                    << std::hex << address;
        }
    }
    Procesor = CPU_C167;
    CODE_LiveReads set;
    for (const uint32_t address : {0x8000u, 0x8008u, 0x8040u, 0xFFFFFEu, 0xFFFFFFu})
        CODE_WantLive(&set, address, 2); // the last one reaches beyond
    const std::vector<CODE_LivePiece> plan = CODE_PlanLive(set);
    ASSERT_EQ(3u, plan.size());
    EXPECT_EQ(10u, plan[0].size) << "neighbours together";
}

} // namespace
