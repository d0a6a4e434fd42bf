// The console with everything behind it: headless panels, a simulated target on a
// port, a scratch folder as the current one. Tests type lines and look at what the
// text box got.
#ifndef TESTS_SUPPORT_CONSOLE_RIG_H
#define TESTS_SUPPORT_CONSOLE_RIG_H

#include <cstdint>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "console/script/script.h"
#include "runtime/headless/headless.h"
#include "settings/settings.h"
#include "support/scratch.h"
#include "support/sim_fixture.h"
#include "support/ui_reading.h"
#include "symbols/varnode.h"
#include "ui/resource.h"

constexpr int RIG_PORT = 7;

struct ConsoleRig : testing::Test {
    SIM_Target *target = nullptr;
    const ScratchFolder folder{true};
    size_t seen = 0; // lines of the text box already taken

    void SetUp() override
    {
        HL_Reset();
        ASSERT_EQ(HL_LoadAllPanels(), 0);
        mainPanel = PANEL_MAIN;
        consolePanel = PANEL_CONSOLE;
        ResetSettings();
        SIM_Options options;
        options.demo = false;
        target = SIMT_Start(RIG_PORT, options);
        ASSERT_NE(target, nullptr);
    }
    void TearDown() override
    {
        UCM_Close();
        if (target)
            SIMT_Stop(RIG_PORT, target);
        ResetSettings();
        HL_Reset();
    }
    void ResetSettings()
    {
        UCM_Init();
        UCM_UseWin32(1);
        Procesor = CPU_C167;
        VR_nProtocol = PROTOCOL_MR166;
        ncom = RIG_PORT;
        bRate = 115200;
        STATION = 1;
        isTimer = 0;
        VR_isFullCommandSet = true;
        command = CMD_C166;
        nASC_Opened = 0;
        FreeNodes(aVarNode, &nNodes);
        openStruct = openTMSStruct = OPEN_NONE;
        aOldCommand.fill("");
        iOldCmd = iOldCmd2 = 0;
    }

    // Another target, empty again, and the program's protocol.
    void ChangeProtocol()
    {
        SIMT_Stop(RIG_PORT, target);
        SIM_Options options;
        options.demo = false;
        options.modbus = true;
        target = SIMT_Start(RIG_PORT, options);
        ASSERT_NE(target, nullptr);
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
        SIM_Poke(target, STATION, address, bytes.data(), bytes.size());
    }
    std::vector<uint8_t> Peek(uint32_t address, size_t count)
    {
        std::vector<uint8_t> bytes(count);
        SIM_Peek(target, STATION, address, bytes.data(), count);
        return bytes;
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
