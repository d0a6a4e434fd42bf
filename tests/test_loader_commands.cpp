// The flash commands of the console and the port they borrow, over a pseudo terminal to a
// simulated boot-strap loader; `hexload` to an ordinary target; the console program.
#include "support/console_rig.h"

#include <sys/wait.h>

#include "comm/mr166_link.h"
#include "loader/borrow.h"
#include "loader/l3_protocol.h"
#include "sim/loader.h"

namespace {

// Four bytes at 0x10 and "VIREO2" at 0x10000.
const char HEX[] =
    ":04001000DEADBEEFB4\r\n:020000040001F9\r\n:06000000564952454F3243\r\n:00000001FF\r\n";

struct FlashCommands : ConsoleRig {
    void SetUp() override
    {
        ConsoleRig::SetUp();
        PlugLoader();
        WriteFileText("a.hex", HEX);
    }
    std::string Flash(long address, long count)
    {
        std::string bytes;
        SIM_WithLoader(target, [&](SIM_Loader *loader) {
            const auto at = loader->flash.begin() + address;
            bytes.assign(at, at + count);
        });
        return bytes;
    }
};

TEST_F(FlashCommands, WorkAsTheySay)
{
    WriteFileText("b.hex", ":01001000DE11\n:01001100529C\n:00000001FF\n");
    WriteFileText("c.hex", ":020000040000\n:00000001FF\n");
    // Each line with what it prints in front of its own repetition and "-> OK!" or "->Error".
    const std::pair<const char *, std::string> cases[] = {
        {"l3test", ""},
        {"l3erase", "Erasing Flash! This can take up to 15s, wait please ...\n"},
        {"l3write a.hex", " OK, programming done.\n"},
        {"l3verify a.hex", " OK, 10 bytes are equal.\n"},
        {"l3read 0FFFEH, 10, r.HEX", ""},
        {"l3read 10000H, 300, r.bin", ""},
        {"l3write none.hex",
         " Error, exit code: -1\nERROR - l3write: the file cannot be opened.\n"},
        {"l3verify none.hex", "ERROR - l3verify: The file cannot be read.\n"},
        {"l3verify b.hex",
         "ERROR - l3verify: The flash differs from the file: 0x000011 should hold 52 "
         "and holds AD.\n"},
        {"l3verify c.hex",
         "the file holds no data\nline 1: 13 characters, but a record of 2 bytes has 15\nERROR - "
         "l3verify: The file cannot be programmed: problems found: 2.\n"},
        {"l3read 0FFFFF0H, 17, x.bin", "ERROR - l3read: invalid script parameters.\n"},
        {"l3read 0, 1, no/such", "ERROR - l3read: Can't write file 'no/such'.\n"}};
    for (const auto &c : cases) {
        const bool isError = c.second.find("ERROR") != std::string::npos;
        EXPECT_EQ(c.second + c.first + (isError ? " ->Error\n" : " -> OK!\n"), Run(c.first));
    }
    EXPECT_EQ("VIREO2\xFF", Flash(0x10000, 7));
    EXPECT_EQ("\xDE\xAD\xBE\xEF\xFF", Flash(0x10, 5));
    EXPECT_EQ("VIREO2" + std::string(294, '\xFF'), ReadFile("r.bin"));
    EXPECT_EQ(":020000040000FA\r\n:02FFFE00FFFF03\r\n:020000040001F9\r\n"
              ":08000000564952454F32FFFF43\r\n:00000001FF\r\n",
              ReadFile("r.HEX"));

    SIM_WithLoader(target, [](SIM_Loader *loader) { loader->faults.eraseAnswer = 0xE4; });
    EXPECT_TRUE(Has(Run("l3erase"), "ERROR - l3erase: wrong answer 0xE4."));
    SIM_WithLoader(target, [](SIM_Loader *loader) { loader->faults.corrupt = 1; });
    EXPECT_TRUE(Has(Run("l3test"), "ERROR - l3test: no loader: wrong"));
    EXPECT_TRUE(Has(Run("l3write a.hex"), " Error, exit code: -3\nERROR - l3write: "
                                          "block at 0x000010: wrong check sum."));
    EXPECT_TRUE(Has(Run("l3read 0, 1, x.bin"), "ERROR - l3read: 0x000000: wrong"));
    EXPECT_EQ("<none>", ReadFile("x.bin"));
}

// Whatever the settings say, the loader gets its port and communication goes on as before.
TEST_F(FlashCommands, ThePortIsBorrowedAndGivenBack)
{
    LDR_Loan loan;
    for (const int isWin32 : {1, 0, 1})
        for (const bool isOpen : {true, false}) {
            UCM_Close();
            MrASC_UseWin32(isWin32);
            ASSERT_TRUE(!isOpen || UCM_Open(PROTOCOL_MR166, RIG_PORT, 115200) == 0);
            const int wait = TerminalWait();
            ASSERT_EQ(0, LDR_BorrowPort(RIG_PORT, 115200, &loan));
            EXPECT_EQ(0, LD167U_L3Test()) << LD167U_GetFaultText();
            EXPECT_EQ(10, TerminalWait());
            EXPECT_EQ(0, LDR_ReturnPort(loan));
            EXPECT_EQ(isWin32, MR166_isWin32);
            EXPECT_EQ(isOpen, UCM_IsOpened() && wMrOpenFlag);
            EXPECT_TRUE(!isOpen || TerminalWait() == wait);
        }
    EXPECT_EQ(MR166_ERR_OPEN, LDR_BorrowPort(99, 115200, &loan));
    ASSERT_EQ(0, UCM_Open(PROTOCOL_MR166, RIG_PORT, 115200));
    PlugLoader(); // unplugged and plugged in again: another device
    ASSERT_EQ(0, LDR_BorrowPort(RIG_PORT, 115200, &loan));
    EXPECT_EQ(0, LD167U_L3Test()) << LD167U_GetFaultText();
    LDR_ReturnPort(loan);
}

TEST_F(ConsoleRig, HexFilesLoadIntoMemory)
{
    WriteFileText("a.hex", HEX);
    EXPECT_EQ("hexload a.hex -> OK!\n", Run("hexload a.hex"));
    EXPECT_EQ((std::vector<uint8_t>{0xDE, 0xAD, 0xBE, 0xEF, 0}), Peek(0x10, 5));
    EXPECT_EQ((std::vector<uint8_t>{'V', 'I', 'R', 'E', 'O', '2', 0}), Peek(0x10000, 7));
    const std::pair<const char *, const char *> cases[] = {
        {":01002000AA35\n:0400000500001234B1\n", "line 2: not a record"},
        {":01002000AB34\n\n", "line 2: not a record"},
        {":020000040100F9\n:01000000AA55\n", "block at 0x1000000: "}};
    for (const auto &c : cases) {
        WriteFileText("b.hex", c.first);
        EXPECT_TRUE(Has(Run("hexload b.hex"), c.second)) << c.first;
    }
    EXPECT_EQ((std::vector<uint8_t>{0xAB}), Peek(0x20, 1)) << "what stood before was loaded";
    EXPECT_TRUE(Has(Run("hexload none.hex"), "the file cannot be opened"));
}

TEST_F(FlashCommands, TheConsoleProgramEndsWithTheTruth)
{
    WriteFileText("Vireo2.ini", "r, AC167\np, " + std::to_string(RIG_PORT) + "\nb, 115200\ns, 1\n");
    WriteFileText("cut.hex", ":01001000DE11\n");
    const struct {
        const char *arguments;
        int code;
        const char *says, *saysToo;
    } cases[] = {
        {"a.hex --no-erase", 1, "must be erased first: 0x000010", "The flash was not changed."},
        {"a.hex", 0, "0x010000-0x010005, 6 bytes", "read back and equal"},
        {"a.hex --no-erase", 0, "Reading what the flash holds", "read back and equal"},
        {"a.hex --no-verify", 0, "Programming: 100 %", "10 bytes written, not read back"},
        {"cut.hex", 1, "cut.hex: line 1: the end record is missing", "cannot be programmed"},
        {"none.hex", 1, "The file cannot be read.", ""},
        {"a.hex b.scr", 2, "exclude", ""}};
    for (const auto &c : cases) {
        const std::string line = "'" BINARY_DIR "/vireo2-console' --program " +
                                 std::string(c.arguments) + " >out 2>err </dev/null";
        EXPECT_EQ(c.code, WEXITSTATUS(std::system(line.c_str()))) << c.arguments;
        const std::string err = ReadFile("err");
        EXPECT_TRUE(Has(err, c.says)) << c.arguments;
        EXPECT_TRUE(Has(err, c.saysToo)) << c.arguments;
        EXPECT_EQ("", ReadFile("out"));
    }
    EXPECT_EQ("VIREO2\xFF", Flash(0x10000, 7));
}

} // namespace
