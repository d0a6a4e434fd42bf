// The console with everything behind it: headless panels, a simulated target on a
// port, a scratch folder as the current one. Tests type lines and look at what the
// text box got.
#ifndef TESTS_SUPPORT_CONSOLE_RIG_H
#define TESTS_SUPPORT_CONSOLE_RIG_H

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "app/VR.h"
#include "comm/ucm.h"
#include "console/monitor.h"
#include "console/script.h"
#include "runtime/headless/headless.h"
#include "support/sim_fixture.h"
#include "symbols/varnode.h"
#include "ui/resource.h"

constexpr int RIG_PORT = 7;

struct ConsoleRig : testing::Test {
    SIM_Target *target = nullptr;
    std::string folder;
    std::string oldFolder;
    size_t seen = 0; // lines of the text box already taken

    void SetUp() override
    {
        std::string scratch = std::filesystem::temp_directory_path() / "consoleXXXXXX";
        char current[PATH_MAX_CHARS];
        ASSERT_NE(mkdtemp(&scratch[0]), nullptr);
        ASSERT_NE(getcwd(current, sizeof current), nullptr);
        folder = scratch;
        oldFolder = current;
        ASSERT_EQ(chdir(folder.c_str()), 0);
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
        EXPECT_EQ(chdir(oldFolder.c_str()), 0);
        std::filesystem::remove_all(folder);
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

    void Type(const std::string &line)
    {
        HL_SetUserVal(PANEL_CONSOLE, CONSOLE_INPUT, line);
        HL_Key(PANEL_CONSOLE, CONSOLE_INPUT, KEY_ENTER);
    }
    std::string Field()
    {
        std::string text;
        GetCtrlVal(PANEL_CONSOLE, CONSOLE_INPUT, &text);
        return text;
    }
    std::string Prompt()
    {
        std::string text;
        GetCtrlVal(PANEL_CONSOLE, CONSOLE_PROMPT, &text);
        return text;
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
    static void WriteFile(const std::string &name, const std::string &text)
    {
        std::ofstream(name, std::ios::binary) << text;
    }
    // "<none>" when there is no such file.
    static std::string ReadFile(const std::string &name)
    {
        std::ifstream file(name, std::ios::binary);
        std::stringstream text;
        text << file.rdbuf();
        return file ? text.str() : "<none>";
    }
    // A small map: awTable at 8140H, wEnd 3 bytes behind it, nCount at 8002H, byMode at 8102H.
    static void WriteMap(const std::string &name)
    {
        std::string text;
        for (const char *symbol :
             {"08140H   awTable", "08143H   wEnd", "08002H   nCount", "08102H   byMode"})
            text +=
                std::string(symbol) + std::string(46 - std::string(symbol).size(), ' ') + "NDATA\n";
        WriteFile(name, text);
    }
};

#endif
