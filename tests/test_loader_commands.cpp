// The flash commands of the console and the port they borrow, over a pseudo terminal to a
// simulated boot-strap loader; `hexload` to an ordinary target; the console program.
#include "support/console_rig.h"

#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "comm/mr166_link.h"
#include "loader/borrow.h"
#include "loader/hex_file.h"
#include "loader/l3_protocol.h"
#include "sim/loader.h"

namespace {

// "VIREO2" at 0x10000 and four bytes at 0x10.
const char HEX[] = ":04001000DEADBEEFB4\r\n:020000040001F9\r\n:06000000564952454F3243\r\n"
                   ":00000001FF\r\n";

struct FlashCommands : ConsoleRig {
    void SetUp() override
    {
        ConsoleRig::SetUp();
        StartLoader();
        WriteFileText("a.hex", HEX);
    }
    void StartLoader()
    {
        SIMT_Stop(RIG_PORT, target);
        SIM_Options options;
        options.loader = true;
        target = SIMT_Start(RIG_PORT, options);
        ASSERT_NE(target, nullptr);
    }
    std::string Flash(uint32_t address, size_t count)
    {
        std::string bytes;
        SIM_WithLoader(target, [&](SIM_Loader *loader) {
            bytes.assign(loader->flash.begin() + address,
                         loader->flash.begin() + address + static_cast<long>(count));
        });
        return bytes;
    }
    // What the terminal itself waits for a read, in units of 100 ms.
    int TerminalWait()
    {
        const int fd = open(SIM_DevicePath(target), O_RDWR | O_NOCTTY);
        termios settings = {};
        EXPECT_EQ(0, tcgetattr(fd, &settings));
        close(fd);
        return settings.c_cc[VTIME];
    }
};

TEST_F(FlashCommands, EraseWriteVerifyAndReadTheFlash)
{
    const struct {
        const char *line, *text;
    } cases[] = {
        {"l3test", "l3test -> OK!\n"},
        {"l3erase", "Erasing Flash! This can take up to 15s, wait please ...\nl3erase -> OK!\n"},
        {"l3write a.hex", " OK, programming done.\nl3write a.hex -> OK!\n"},
        {"l3verify a.hex", " OK, 10 bytes are equal.\nl3verify a.hex -> OK!\n"},
        {"l3read 0FFFEH, 10, r.HEX", "l3read 0FFFEH, 10, r.HEX -> OK!\n"},
        {"l3read 10000H, 300, r.bin", "l3read 10000H, 300, r.bin -> OK!\n"},
        {"l3write none.hex", " Error, exit code: -1\nERROR - l3write: the file cannot be opened.\n"
                             "l3write none.hex ->Error\n"},
        {"l3verify none.hex",
         "ERROR - l3verify: The file cannot be read.\nl3verify none.hex ->Error\n"},
        {"l3read 0FFFFF0H, 17, r.bin",
         "ERROR - l3read: invalid script parameters.\nl3read 0FFFFF0H, 17, r.bin ->Error\n"},
        {"l3read 0, 1, no/such",
         "ERROR - l3read: Can't write file 'no/such'.\nl3read 0, 1, no/such ->Error\n"}};
    for (const auto &c : cases)
        EXPECT_EQ(c.text, Run(c.line));
    EXPECT_EQ("VIREO2\xFF", Flash(0x10000, 7));
    EXPECT_EQ("\xDE\xAD\xBE\xEF\xFF", Flash(0x10, 5));
    EXPECT_EQ("VIREO2" + std::string(294, '\xFF'), ReadFile("r.bin"));
    EXPECT_EQ(":020000040000FA\r\n:02FFFE00FFFF03\r\n:020000040001F9\r\n"
              ":08000000564952454F32FFFF43\r\n:00000001FF\r\n",
              ReadFile("r.HEX"));

    WriteFileText("b.hex", ":01001100529C\n:02000004000\n:00000001FF\n");
    EXPECT_NE(std::string::npos, Run("l3verify b.hex").find("line 2: 12 characters"));
    WriteFileText("b.hex", ":01001000DE11\n:01001100529C\n:00000001FF\n");
    EXPECT_NE(std::string::npos,
              Run("l3verify b.hex").find("0x000011 should hold 52 and holds AD"));
}

TEST_F(FlashCommands, FailuresAreTold)
{
    SIM_WithLoader(target, [](SIM_Loader *loader) { loader->faults.eraseAnswer = 0xE4; });
    EXPECT_NE(std::string::npos, Run("l3erase").find("ERROR - l3erase: wrong answer 0xE4."));
    SIM_WithLoader(target, [](SIM_Loader *loader) {
        loader->faults.corrupt = 1;
        loader->flash.assign(SIM_FLASH_SIZE, 0);
    });
    EXPECT_NE(std::string::npos, Run("l3test").find("ERROR - l3test: no loader: wrong"));
    EXPECT_EQ(" Error, exit code: -3\nERROR - l3write: block at 0x000010: wrong check sum.\n"
              "l3write a.hex ->Error\n",
              Run("l3write a.hex"));
    EXPECT_NE(std::string::npos, Run("l3read 0, 1, r.bin").find("ERROR - l3read: 0x000000: wrong"));
    EXPECT_EQ("<none>", ReadFile("r.bin"));
}

// Whatever the settings say, the loader gets its port and communication goes on as before.
TEST_F(FlashCommands, ThePortIsBorrowedAndGivenBack)
{
    LDR_Loan loan;
    for (const int isWin32 : {1, 0}) {
        ASSERT_EQ(0, UCM_Open(PROTOCOL_MR166, RIG_PORT, 115200));
        UCM_UseWin32(isWin32);
        ASSERT_EQ(0, LDR_BorrowPort(RIG_PORT, 115200, &loan));
        EXPECT_EQ(0, LD167U_L3Test()) << LD167U_GetFaultText();
        EXPECT_EQ(10, TerminalWait());
        EXPECT_EQ(0, LDR_ReturnPort(loan));
        EXPECT_EQ(isWin32, MR166_isWin32);
        EXPECT_TRUE(UCM_IsOpened());
        EXPECT_NE(10, TerminalWait());
        if (isWin32) {
            EXPECT_EQ(4, TerminalWait());
        }
        UCM_Close();
        ASSERT_EQ(0, LDR_BorrowPort(RIG_PORT, 115200, &loan));
        EXPECT_EQ(0, LD167U_L3Test());
        EXPECT_EQ(0, LDR_ReturnPort(loan));
        EXPECT_EQ(isWin32, MR166_isWin32);
        EXPECT_FALSE(UCM_IsOpened() || wMrOpenFlag);
        EXPECT_EQ(MR166_ERR_OPEN, LDR_BorrowPort(99, 115200, &loan));
        EXPECT_EQ(isWin32, MR166_isWin32);
    }
    UCM_UseWin32(1);
    ASSERT_EQ(0, UCM_Open(PROTOCOL_MR166, RIG_PORT, 115200));
    StartLoader(); // unplugged and plugged in again: another device
    ASSERT_EQ(0, LDR_BorrowPort(RIG_PORT, 115200, &loan));
    EXPECT_EQ(0, LD167U_L3Test()) << LD167U_GetFaultText();
    LDR_ReturnPort(loan);
}

TEST_F(ConsoleRig, HexFilesLoadIntoMemory)
{
    WriteFileText("a.hex", HEX);
    EXPECT_EQ("hexload a.hex -> OK!\n", Run("hexload a.hex"));
    EXPECT_EQ((std::vector<uint8_t>{0xDE, 0xAD, 0xBE, 0xEF}), Peek(0x10, 4));
    EXPECT_EQ((std::vector<uint8_t>{'V', 'I', 'R', 'E', 'O', '2', 0}), Peek(0x10000, 7));
    const struct {
        const char *text, *says;
    } cases[] = {{":01002000AA35\n:0400000500001234B1\n", "line 2: not a record"},
                 {":01002000AB34\n\n", "line 2: not a record"},
                 {":020000040100F9\n:01000000AA55\n", "block at 0x1000000: "}};
    for (const auto &c : cases) {
        WriteFileText("b.hex", c.text);
        EXPECT_NE(std::string::npos, Run("hexload b.hex").find(c.says)) << c.text;
    }
    EXPECT_EQ((std::vector<uint8_t>{0xAB}), Peek(0x20, 1)) << "what stood before was loaded";
    EXPECT_NE(std::string::npos, Run("hexload none.hex").find("the file cannot be opened"));
}

TEST_F(FlashCommands, TheConsoleProgramEndsWithTheTruth)
{
    WriteFileText("Vireo2.ini", "r, AC167\np, " + std::to_string(RIG_PORT) + "\nb, 115200\ns, 1\n");
    WriteFileText("cut.hex", ":01001000DE11\n");
    const struct {
        const char *arguments;
        int code;
        std::vector<std::string> says;
    } cases[] = {
        {"--program a.hex --no-erase",
         1,
         {"must be erased first: 0x000010", "The flash was not changed."}},
        {"--program a.hex",
         0,
         {"0x010000-0x010005, 6 bytes", "Programming: 100 %", "read back and equal"}},
        {"--program a.hex --no-erase", 0, {"Reading what the flash holds", "read back and equal"}},
        {"--program a.hex --no-verify", 0, {"10 bytes written, not read back"}},
        {"--program cut.hex",
         1,
         {"cut.hex: line 1: the end record is missing", "cannot be programmed"}},
        {"--program none.hex", 1, {"The file cannot be read."}},
        {"--no-erase", 2, {"go with --program"}},
        {"--program a.hex b.scr", 2, {"excludes"}}};
    for (const auto &c : cases) {
        const std::string line = "'" BINARY_DIR "/vireo2-console' " + std::string(c.arguments) +
                                 " >out 2>err </dev/null";
        EXPECT_EQ(c.code, WEXITSTATUS(std::system(line.c_str()))) << c.arguments;
        for (const std::string &text : c.says)
            EXPECT_NE(std::string::npos, ReadFile("err").find(text)) << text << "\n"
                                                                     << ReadFile("err");
        EXPECT_EQ("", ReadFile("out"));
    }
    EXPECT_EQ("VIREO2\xFF", Flash(0x10000, 7));
}

} // namespace
