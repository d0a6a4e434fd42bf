// The console with everything behind it: headless panels, a simulated target on a
// port, a scratch folder as the current one. Tests type lines and look at what the
// text box got.
#ifndef TESTS_SUPPORT_CONSOLE_RIG_H
#define TESTS_SUPPORT_CONSOLE_RIG_H

#include <fcntl.h>
#include <sstream>
#include <string>
#include <termios.h>
#include <unistd.h>

#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "console/script/script.h"
#include "runtime/headless/headless.h"
#include "settings/settings.h"
#include "support/program_state.h"
#include "support/scratch.h"
#include "support/ui_reading.h"
#include "symbols/varnode.h"
#include "ui/resource.h"

constexpr int RIG_PORT = 7;

struct ConsoleRig : TargetTest {
    const ScratchFolder folder{true};
    size_t seen = 0; // lines of the text box already taken

    ConsoleRig() : TargetTest(RIG_PORT)
    {
        Procesor = CPU_C167;
        ncom = RIG_PORT;
        bRate = 115200;
        VR_isFullCommandSet = true;
    }
    void SetUp() override
    {
        ASSERT_EQ(HL_LoadAllPanels(), 0);
        plug();
    }

    // Another target, empty again, and the program's protocol.
    void ChangeProtocol()
    {
        unplug();
        options.modbus = true;
        plug();
        VR_nProtocol = PROTOCOL_MODBUS;
    }
    void Type(const std::string &line)
    {
        HL_SetUserVal(PANEL_CONSOLE, CONSOLE_INPUT, line);
        HL_Key(PANEL_CONSOLE, CONSOLE_INPUT, KEY_ENTER);
    }
    std::string Field()
    {
        return UiText(PANEL_CONSOLE, CONSOLE_INPUT);
    }
    std::string Prompt()
    {
        return UiText(PANEL_CONSOLE, CONSOLE_PROMPT);
    }
    // Lines the box got since the last call, each with a line feed.
    std::string NewText()
    {
        const std::vector<std::string> lines = HL_GetLines(PANEL_CONSOLE, CONSOLE_BOX);
        std::string text;
        for (; seen < lines.size(); seen++)
            text += lines[seen] + "\n";
        return text;
    }
    // What a line prints, without its echo.
    std::string Run(const std::string &line)
    {
        Type(line);
        const std::string text = NewText();
        return text.substr(text.find('\n') + 1);
    }

    void Poke(uint32_t address, const std::vector<uint8_t> &bytes)
    {
        poke(address, bytes, STATION);
    }
    std::vector<uint8_t> Peek(uint32_t address, size_t count)
    {
        return peek(address, count, STATION);
    }
    // A boot-strap loader in place of the target.
    void PlugLoader()
    {
        unplug();
        options.loader = true;
        plug();
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
    // "<none>" when there is no such file.
    static std::string ReadFile(const std::string &name)
    {
        return std::filesystem::exists(name) ? ReadFileText(name) : "<none>";
    }
    // A small map: awTable at 8140H, wEnd 3 bytes behind it, nCount at 8002H, byMode at 8102H.
    static void WriteMap(const std::string &name)
    {
        std::string text;
        for (const char *symbol :
             {"08140H   awTable", "08143H   wEnd", "08002H   nCount", "08102H   byMode"})
            text +=
                std::string(symbol) + std::string(46 - std::string(symbol).size(), ' ') + "NDATA\n";
        WriteFileText(name, text);
    }
};

#endif
