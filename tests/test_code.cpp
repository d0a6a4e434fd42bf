// The C166 family's code as text. The bytes and texts were checked against the instruction
// set manual and two independent disassemblers' tables.
#include "code/bit_names.h"
#include "code/c166.h"
#include "support/console_rig.h"
#include "symbols/addr_name.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"

#include <set>

namespace {

std::vector<uint8_t> Bytes(const std::string &hex)
{
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

// All instructions of a run of bytes at an address, separated by "; ".
std::string Disassemble(const std::string &hex, uint32_t address = 0x21000)
{
    const std::vector<uint8_t> bytes = Bytes(hex);
    CODE_Scope scope;
    std::string text;
    for (size_t at = 0; at < bytes.size();) {
        CODE_Instruction instruction;
        CODE_Decode(&bytes[at], bytes.size() - at, address + static_cast<uint32_t>(at),
                    CODE_Pages(), &scope, &instruction);
        text += (text.empty() ? "" : "; ") + CODE_ToText(instruction, nullptr);
        at += instruction.length;
    }
    return text;
}

// One line a form: bytes, "|", text; several to a line where they are alike.
const char FORMS[] = R"(
00 12|add r1, r2 / 01 31|addb rh1, rh0 / 02 F1 01 23|add r1, 2301h / 03 00 11 A2|addb 0fe00h, 0a211h
04 F1 01 23|add 2301h, r1 / 05 F2 01 23|addb 2301h, rl1 / 06 01 23 45|add 0fe02h, #4523h
07 FF 11 22|addb rh7, #11h / 08 17|add r1, #7 / 08 3A|add r3, [r2] / 08 2C|add r2, [r0+] / 09 0F|addb rl0, [r3+]
10 34|addc r3, r4 / 11 31|addcb rh1, rh0 / 12 F1 01 23|addc r1, 2301h / 13 00 11 22|addcb 0fe00h, 2211h
14 F1 01 23|addc 2301h, r1 / 15 00 11 22|addcb 2211h, 0fe00h / 16 F2 00 FE|addc r2, #0fe00h
17 00 11 22|addcb 0fe00h, #11h / 18 2C|addc r2, [r0+] / 19 39|addcb rh1, [r1]
20 56|sub r5, r6 / 21 31|subb rh1, rh0 / 22 F1 01 23|sub r1, 2301h / 23 00 11 22|subb 0fe00h, 2211h
24 F1 01 23|sub 2301h, r1 / 25 00 11 22|subb 2211h, 0fe00h / 26 00 11 22|sub 0fe00h, #2211h
27 00 11 22|subb 0fe00h, #11h / 28 37|sub r3, #7 / 29 39|subb rh1, [r1]
30 78|subc r7, r8 / 31 31|subcb rh1, rh0 / 32 F1 01 23|subc r1, 2301h / 33 00 11 22|subcb 0fe00h, 2211h
34 F1 01 23|subc 2301h, r1 / 35 20 20 30|subcb 3020h, 0fe40h / 36 00 11 22|subc 0fe00h, #2211h
37 00 11 22|subcb 0fe00h, #11h / 38 21|subc r2, #1 / 39 0F|subcb rl0, [r3+]
40 48|cmp r4, r8 / 41 01|cmpb rl0, rh0 / 42 F1 CD AB|cmp r1, 0abcdh / 43 01 FF 12|cmpb 0fe02h, 12ffh
46 F1 CD AB|cmp r1, #0abcdh / 47 01 FF 00|cmpb 0fe02h, #0ffh / 48 9C|cmp r9, [r0+] / 49 12|cmpb rh0, #2
50 02|xor r0, r2 / 51 01|xorb rl0, rh0 / 52 F3 00 10|xor r3, 1000h / 53 FE 01 02|xorb rl7, 0201h
54 F2 00 10|xor 1000h, r2 / 55 FE 01 02|xorb 0201h, rl7 / 56 F1 00 10|xor r1, #1000h
57 FF 01 00|xorb rh7, #01h / 58 F2|xor r15, #2 / 59 38|xorb rh1, [r0]
60 12|and r1, r2 / 61 31|andb rh1, rh0 / 62 F1 01 23|and r1, 2301h / 63 00 11 22|andb 0fe00h, 2211h
64 F1 01 23|and 2301h, r1 / 65 00 11 22|andb 2211h, 0fe00h / 66 F4 FF 3F|and r4, #3fffh
67 00 11 22|andb 0fe00h, #11h / 68 10|and r1, #0 / 69 39|andb rh1, [r1]
70 34|or r3, r4 / 71 31|orb rh1, rh0 / 72 00 11 22|or 0fe00h, 2211h / 73 00 11 22|orb 0fe00h, 2211h
74 00 11 22|or 2211h, 0fe00h / 75 00 11 22|orb 2211h, 0fe00h / 76 E2 00 04|or 0ffc4h, #0400h
77 00 11 22|orb 0fe00h, #11h / 78 4F|or r4, [r3+] / 79 21|orb rl1, #1
0A F1 80 FF|bfldl r1, #80h, #0ffh / 1A 88 03 02|bfldh 0ff10h, #02h, #03h / 0A 00 20 20|bfldl 0fd00h, #20h, #20h
2A F1 F0 E7|bcmp r0.7, r1.14 / 3A F1 F0 E7|bmovn r0.7, r1.14 / 4A F2 F2 80|bmov r2.0, r2.8
5A F1 00 E7|bor 0fd00h.7, r1.14 / 6A F0 F1 7E|band r1.14, r0.7 / 7A 44 00 40|bxor 0fd00h.0, 0fd88h.4
0B 12|mul r1, r2 / 1B 23|mulu r2, r3 / 2B 10|prior r1, r0 / 4B 11|div r1 / 5B 77|divu r7 / 6B 00|divl r0 / 7B 44|divlu r4
0C 02|rol r0, r2 / 1C F2|rol r2, #15 / 2C 34|ror r3, r4 / 3C 43|ror r3, #4 / 4C 01|shl r0, r1 / 5C 17|shl r7, #1
6C 45|shr r4, r5 / 7C 48|shr r8, #4 / AC 7A|ashr r7, r10 / BC 16|ashr r6, #1
80 32|cmpi1 r2, #3 / 82 F3 CD AB|cmpi1 r3, 0abcdh / 86 F1 34 12|cmpi1 r1, #1234h / 90 A1|cmpi2 r1, #10
92 F0 CD AB|cmpi2 r0, 0abcdh / 96 F7 34 12|cmpi2 r7, #1234h / A0 32|cmpd1 r2, #3 / A2 F3 CD AB|cmpd1 r3, 0abcdh
A6 F1 34 12|cmpd1 r1, #1234h / B0 A1|cmpd2 r1, #10 / B2 F0 CD AB|cmpd2 r0, 0abcdh / B6 F7 34 12|cmpd2 r7, #1234h
81 10|neg r1 / 91 40|cpl r4 / A1 10|negb rh0 / B1 20|cplb rl1
84 02 60 06|mov [r2], 0660h / 94 02 60 06|mov 0660h, [r2] / A4 02 60 06|movb [r2], 0660h / B4 02 60 06|movb 0660h, [r2]
88 12|mov [-r2], r1 / 98 12|mov r1, [r2+] / A8 12|mov r1, [r2] / B8 12|mov [r2], r1 / C8 12|mov [r1], [r2]
D8 12|mov [r1+], [r2] / E8 34|mov [r3], [r4+] / 89 34|movb [-r4], rh1 / 99 12|movb rh0, [r2+] / A9 12|movb rh0, [r2]
B9 02|movb [r2], rl0 / C9 02|movb [r0], [r2] / D9 02|movb [r0+], [r2] / E9 02|movb [r0], [r2+]
C4 54 02 00|mov [r4+#0002h], r5 / D4 01 22 11|mov r0, [r1+#1122h] / E4 21 22 11|movb [r1+#1122h], rl1 / F4 31 22 11|movb rh1, [r1+#1122h]
E0 53|mov r3, #5 / E1 3F|movb rh7, #3 / E6 F1 22 11|mov r1, #1122h / E7 F0 FF 00|movb rl0, #0ffh
F0 10|mov r1, r0 / F1 31|movb rh1, rh0 / F2 F0 11 22|mov r0, 2211h / F3 F0 FF 11|movb rl0, 11ffh
F6 F8 B0 FE|mov 0feb0h, r8 / F7 F0 FF 11|movb 11ffh, rl0 / C0 01|movbz r1, rl0 / D0 10|movbs r0, rh0
C2 03 11 22|movbz 0fe06h, 2211h / D2 F3 11 22|movbs r3, 2211h / C5 F3 11 22|movbz 2211h, rh1 / D5 03 11 22|movbs 2211h, 0fe06h
EC 33|push 0fe66h / FC 09|pop 0fe12h / C6 F1 02 41|scxt r1, #4102h / D6 F3 12 34|scxt r3, 3412h
8A 01 04 30|jb 0fd02h.3, 02100ch / 9A 01 FE 30|jnb 0fd02h.3, 021000h / AA F1 80 F0|jbc r1.15, 020f04h / BA 81 7F 00|jnbs 0ff02h.0, 021102h
EA B0 60 06|jmpa cc_sle, 020660h / FA 03 60 A6|jmps 03h, 0a660h / 9C FF|jmpi cc_ule, [r15]
CA 20 60 06|calla cc_z, 020660h / DA C3 60 06|calls 0c3h, 0660h / AB 13|calli cc_net, [r3] / BB F0|callr 020fe2h
E2 F1 01 48|pcall r1, 024801h / 9B 0E|trap #07h / CB 00|ret / DB 00|rets / FB 88|reti / EB 18|retp 0fe30h / CC 00|nop
D1 30|atomic #4 / D1 80|extr #1 / D7 10 C3 00|exts #0c3h, #2 / D7 70 FF 03|extp #3ffh, #4 / D7 90 AB 00|extsr #0abh, #2
D7 C0 AB 01|extpr #1abh, #1 / DC 02|exts r2, #1 / DC 55|extp r5, #2 / DC BF|extsr r15, #4 / DC C0|extpr r0, #1
87 78 87 87|idle / 97 68 97 97|pwrdn / A5 5A A5 A5|diswdt / A7 58 A7 A7|srvwdt / B5 4A B5 B5|einit / B7 48 B7 B7|srst
0D FF|jmpr cc_uc, 021000h / 1D 00|jmpr cc_net, 021002h / 2D 7F|jmpr cc_z, 021100h / 3D 80|jmpr cc_nz, 020f02h / 4D 01|jmpr cc_v, 021004h
5D 01|jmpr cc_nv, 021004h / 6D 01|jmpr cc_n, 021004h / 7D 01|jmpr cc_nn, 021004h / 8D 01|jmpr cc_ult, 021004h / 9D 01|jmpr cc_uge, 021004h
AD 01|jmpr cc_sgt, 021004h / BD 01|jmpr cc_sle, 021004h / CD 01|jmpr cc_slt, 021004h / DD 01|jmpr cc_sge, 021004h
ED 01|jmpr cc_ugt, 021004h / FD 01|jmpr cc_ule, 021004h
0E F2|bclr r2.0 / BE 4C|bclr 0fd98h.11 / 3F F2|bset r2.3 / FF 81|bset 0ff02h.15)";

TEST(Code, WritesEveryForm)
{
    std::string table = FORMS;
    for (size_t at = 0; (at = table.find(" / ", at)) != std::string::npos;)
        table.replace(at, 3, "\n");
    std::istringstream lines(table);
    int forms = 0;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty())
            continue;
        std::string hex = line.substr(0, line.find('|'));
        hex.erase(std::remove(hex.begin(), hex.end(), ' '), hex.end());
        EXPECT_EQ(line.substr(line.find('|') + 1), Disassemble(hex)) << hex;
        ++forms;
    }
    EXPECT_EQ(218, forms);
}

// Lengths by the first byte, one row for sixteen; "-": no instruction begins with it.
const char *const LENGTHS[16] = {
    "2244444422422222", "2244444422422222", "2244444422422222", "22444444224-2222",
    "2244--4422422222", "2244444422422222", "2244444422422222", "2244444422422222",
    "224-4-44224--222", "224-4-4422422222", "224-444422422222", "224-444422422222",
    "2-4-444-22422222", "224-444422422222", "224-4-4422422222", "22444-44--422222"};

TEST(Code, HasThePublishedLengthForEveryFirstWord)
{
    std::set<int> valid;
    for (int word = 0; word < 0x10000; ++word) {
        const int first = word & 0xFF, second = word >> 8;
        const char length = LENGTHS[first >> 4][first & 15];
        const auto low = static_cast<uint8_t>(first);
        // The rest of a protected instruction repeats its first byte.
        const bool isProtected = (first ^ second) == 0xFF;
        const uint8_t rest = isProtected ? low : 0;
        const uint8_t bytes[] = {low, static_cast<uint8_t>(second), rest, rest};
        CODE_Scope scope;
        CODE_Instruction instruction;
        CODE_Decode(bytes, sizeof bytes, 0, CODE_Pages(), &scope, &instruction);
        ASSERT_EQ(length == '4' ? 4 : 2, instruction.length) << std::hex << word;
        ASSERT_TRUE(length != '-' || !instruction.isValid) << std::hex << word;
        ASSERT_EQ(instruction.isValid, CODE_ToText(instruction, nullptr) != "??");
        if (instruction.isValid)
            valid.insert(first);
    }
    EXPECT_EQ(256u - 20u, valid.size());
}

TEST(Code, SaysWhatIsNoInstruction)
{
    for (const char *hex :
         {"8111",     "9142",     "A11F",     "4B10",     "5B07",     "6B01",     "7B45",
          "CB01",     "DB10",     "FB00",     "CC01",     "9B01",     "D140",     "D1C0",
          "D181",     "D7010400", "D7000001", "D7400004", "84120000", "EAB16006", "CA216006",
          "8A010431", "87788786", "B748B700", "A55BA5A5", "A6013412", "82E00000", "3B00",
          "F5",       "00",       "0212",     "021234"}) {
        // A cut instruction is no instruction, however well it begins.
        EXPECT_EQ("??", Disassemble(hex)) << hex;
    }
}

// What extension instructions do ends where they say, and only there.
TEST(Code, KeepsScopes)
{
    const struct {
        const char *hex;
        std::vector<uint32_t> addresses; // of the first operand of each instruction
    } cases[] = {
        // extr #2: extended area for two, then the standard one; bit memory never moves.
        {"D190E6000100"
         "0F80"
         "0F80"
         "0F10",
         {CODE_NO_ADDRESS, 0xF000, 0xF100, 0xFF00, 0xFD20}},
        // extp #4, #1: a page for one memory operand, afterwards unknown without pointers.
        {"D7400400F6F01082F6F01082", {CODE_NO_ADDRESS, 0x10210, CODE_NO_ADDRESS}},
        {"D7100500F6F01082F6F01082F6F01082", {CODE_NO_ADDRESS, 0x58210, 0x58210, CODE_NO_ADDRESS}},
        // A number in a register is not known; what is no instruction counts, too.
        {"DC10F6F01082", {CODE_NO_ADDRESS, CODE_NO_ADDRESS}},
        {"D7000500"
         "3B00"
         "F6F01082",
         {CODE_NO_ADDRESS, CODE_NO_ADDRESS, CODE_NO_ADDRESS}},
        // One counter serves all: an atomic within the scope starts it anew.
        {"D7000500"
         "D110"
         "F6F01082F6F01082F6F01082",
         {CODE_NO_ADDRESS, CODE_NO_ADDRESS, 0x58210, 0x58210, CODE_NO_ADDRESS}},
        {"D7A00500"
         "EC00F6F01082F6F01082EC00",
         {CODE_NO_ADDRESS, 0xF000, 0x58210, 0x58210, 0xFE00}},
    };
    for (const auto &row : cases) {
        const std::vector<uint8_t> bytes = Bytes(row.hex);
        CODE_Scope scope;
        size_t at = 0;
        for (const uint32_t address : row.addresses) {
            CODE_Instruction instruction;
            CODE_Decode(&bytes[at], bytes.size() - at, 0, CODE_Pages(), &scope, &instruction);
            EXPECT_EQ(address, instruction.operands[0].address) << row.hex << " at " << at;
            at += instruction.length;
        }
    }
}

TEST(Code, NamesBits)
{
    const struct {
        const char *registerName;
        int bit;
        const char *name;
    } cases[] = {{"PSW", 11, "IEN"},      {"PSW", 14, "ILVL.2"}, {"PSW", 8, ""},
                 {"CC29IC", 7, "CC29IR"}, {"T3IC", 2, "ILVL.0"}, {"CCM5", 7, "ACC21"},
                 {"CCM1", 4, "CCMOD5.0"}, {"S0CON", 15, "S0R"},  {"P3", 1, ""}};
    for (const auto &row : cases)
        EXPECT_EQ(row.name, CODE_GetBitName(row.registerName, row.bit)) << row.registerName;
}

struct CodeCommands : ConsoleRig {
    void SetUp() override
    {
        ConsoleRig::SetUp();
        initRgMap(CPU_C167);
        AddMapVar(0x8140, "awTable");
        AddMapVar(0x21010, "Control");
        SortMapByName();
        SortMapNdxByAddr();
        openStruct = OPEN_MAP_FILE;
    }
};

TEST_F(CodeCommands, ListsCodeWithNames)
{
    Poke(0xFE00, {2, 0, 1, 0, 2, 0, 3, 0}); // page pointers
    Poke(0x21000, {0xF2, 0xF4, 0x42, 0x01, 0xBF, 0x88, 0xDA, 0x02, 0x10, 0x10, 0xE6, 0x00, 0x34,
                   0x12, 0x3B, 0x00});
    EXPECT_EQ("021000  F2 F4 42 01  mov r4, 0142h                      ; 008142 awTable+2\n"
              "021004  BF 88        bset psw.11                        ; IEN\n"
              "021006  DA 02 10 10  calls 02h, 1010h                   ; 021010 Control\n"
              "02100a  E6 00 34 12  mov dpp0, #1234h\n"
              "02100e  3B 00        ??\n"
              "dis 0x21000, 5 -> OK!\n",
              Run("dis 0x21000, 5"));
    // The last instruction of the address space is cut off, not read beyond it.
    Poke(0xFFFFFE, {0x02, 0xF1});
    EXPECT_EQ("fffffe  02 F1        ??\ndis 0xFFFFFE, 9 -> OK!\n", Run("dis 0xFFFFFE, 9"));
}

TEST_F(CodeCommands, RefuseWhatTheyCannotList)
{
    const struct {
        const char *line, *text;
    } cases[] = {
        {"dis 0x21001, 5", "ERROR - dis: code stands at even addresses."},
        {"dis 0x21000, 0", "ERROR - dis: the number of instructions must be 1 to 255."},
        {"dis 0x1000000, 5", "ERROR - dis: no such address."},
        {"addr2name 0x10", "ERROR - addr2name: no name lies at this address or below it."}};
    for (const auto &row : cases)
        EXPECT_EQ(row.text, Run(row.line).substr(0, std::string(row.text).size())) << row.line;
    SIM_Options faults;
    faults.demo = false;
    faults.silentAfter = 0;
    SIM_SetFaults(target, faults);
    EXPECT_EQ("ERROR - dis: no answer.\ndis 0x21000, 5 ->Error\n", Run("dis 0x21000, 5"));
    Procesor = CPU_F283XX;
    EXPECT_EQ("ERROR - dis: only the code of a C166 or C167 can be listed.\n",
              Run("dis 0x21000, 5").substr(0, 60));
}

TEST_F(CodeCommands, NameAddresses)
{
    const struct {
        uint32_t address;
        const char *name;
    } cases[] = {{0xFF10, "PSW"},       {0xFF11, "PSW+1"}, {0x8140, "awTable"},
                 {0x8145, "awTable+5"}, {0x813F, ""},      {0x8240, ""}};
    for (const auto &row : cases)
        EXPECT_EQ(row.name, SYM_AddressToName(row.address)) << row.address;
    // The tip of an address in the watch list.
    LItem &item = aLItems[0];
    item = LItem();
    item.address = 0x8142;
    nLItems = 1;
    openLItems = 1;
    VR_FillDebugItems();
    LSV_ShowValues();
    std::vector<UI_Cell> cells;
    GetListCells(PANEL_MAIN, MAIN_LIST, 0, &cells);
    ASSERT_GT(cells.size(), 1u);
    EXPECT_EQ("awTable+2", cells[1].tip);
    EXPECT_EQ(" 008142  awTable+2\naddr2name 0x8142 -> OK!\n", Run("addr2name 0x8142"));
    EXPECT_EQ(" 009000  09000h (==awTable+3776)\naddr2name 0x9000 -> OK!\n",
              Run("addr2name 0x9000"));
}

} // namespace
