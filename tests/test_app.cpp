// The program's spine as a user meets it: start-up, options, title and state line,
// the menus' check marks, communication on and off, the two views, the end.

#include "app/main_panel.h"
#include "app/options.h"
#include "app/startup.h"
#include "app/version.h"
#include "comm/communication.h"
#include "comm/mr166_link.h"
#include "comm/ucm.h"
#include "runtime/view.h"
#include "support/program_state.h"
#include "symbols/varnode.h"
#include "watch/list/debug_file.h"
#include "watch/list/list_file.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"

namespace {

// A program started in an empty folder of its own.
class App : public TargetTest {
protected:
    App() : TargetTest(1)
    {
    }
    static int Start(std::vector<std::string> options = {})
    {
        std::vector<char *> argv = {const_cast<char *>("vireo2")};
        for (std::string &option : options)
            argv.push_back(option.data());
        argv.push_back(nullptr);
        return VR_StartUp(static_cast<int>(argv.size()) - 1, argv.data());
    }
    static std::vector<int> Checked(int menu)
    {
        std::vector<int> items;
        for (const int item : HL_GetMenuItems(menu))
            if (UiItemAttribute(item, ATTR_CHECKED) != 0)
                items.push_back(item);
        return items;
    }
    const ScratchFolder folder{true};
};

TEST_F(App, CommandLine)
{
    const struct {
        std::vector<std::string> options;
        int port, baud, station, mode, rest;
    } cases[] = {{{"-7"}, 1, 19200, 1, 0, 2},
                 {{"-4"}, 4, 19200, 1, 0, 2},
                 {{"-0"}, 1, 19200, 1, 0, 2},
                 {{"-b"}, 1, 0, 1, 0, 2},
                 {{"-b-5"}, 1, 19200, 1, 0, 2},
                 {{"-b115200", "-s-2"}, 1, 115200, 0, 0, 3},
                 {{"-s15x"}, 1, 19200, 15, 0, 2},
                 {{"-C", "-3"}, 3, 19200, 1, 1, 3},
                 {{"f.scr", "-C"}, 1, 19200, 1, 0, 1},
                 {{"-", "-z9", "-2"}, 2, 19200, 1, 0, 4},
                 {{}, 1, 19200, 1, 0, 1}};
    for (const auto &c : cases) {
        ResetProgram();
        std::vector<char *> argv = {nullptr};
        for (const std::string &option : c.options)
            argv.push_back(const_cast<char *>(option.c_str()));
        EXPECT_EQ(c.rest, GetCmdLineOptions(static_cast<int>(argv.size()), argv.data()));
        EXPECT_EQ(c.port, ncom);
        EXPECT_EQ(c.baud, bRate);
        EXPECT_EQ(c.station, STATION);
        EXPECT_EQ(c.mode, VR_enAppMode);
    }
}

TEST_F(App, StartShowsConsoleViewWithCommunicationOff)
{
    ASSERT_EQ(0, Start({"-2", "-s3"}));
    EXPECT_EQ("CPU = AC166; prot = COM166; st = 3; com = 2, brate = 19200; auto-off; Win32Com; \n"
              "Map not opened.",
              UiText(mainPanel, MAIN_STATE));
    EXPECT_EQ(1, UiPanelAttribute(mainPanel, ATTR_VISIBLE));
    EXPECT_EQ(1, UiPanelAttribute(consolePanel, ATTR_VISIBLE));
    EXPECT_EQ(0, UiPanelAttribute(PANEL_CONFIG, ATTR_VISIBLE));
    EXPECT_EQ(1, UiPanelAttribute(mainPanel, ATTR_SIZABLE));
    EXPECT_EQ(0, UiValue(mainPanel, MAIN_COMM));
    EXPECT_EQ(1, UiValue(mainPanel, MAIN_STOPPED));
    EXPECT_EQ(0, HL_FireTimer(PANEL_MAIN, MAIN_TIMER));
    for (const int item : {ITEM_RELOAD_MAP, ITEM_CLOSE_PORT})
        EXPECT_EQ(1, UiItemAttribute(item, ATTR_DIMMED)) << item;
    EXPECT_EQ(0, UiItemAttribute(ITEM_CONNECT, ATTR_DIMMED));
    EXPECT_TRUE(HL_GetPopups().empty());
}

TEST_F(App, ConfigurationModeShowsItsPanelAndItsCloseEnds)
{
    ASSERT_EQ(0, Start({"-C"}));
    EXPECT_EQ(0, UiPanelAttribute(mainPanel, ATTR_VISIBLE));
    EXPECT_EQ(1, UiPanelAttribute(PANEL_CONFIG, ATTR_VISIBLE));
    EXPECT_EQ(1, UiAttribute(PANEL_CONFIG, CONFIG_TERMINAL, ATTR_VISIBLE));
    HL_ClosePanel(PANEL_CONFIG);
    EXPECT_TRUE(HL_IsQuit());
    EXPECT_TRUE(std::filesystem::exists("Vireo2Config.ini"));
    EXPECT_FALSE(std::filesystem::exists("Vireo2.ini"));

    ResetProgram();
    ASSERT_EQ(0, Start());
    HL_ClickMenu(ITEM_CONFIG);
    EXPECT_EQ(1, UiPanelAttribute(PANEL_CONFIG, ATTR_VISIBLE));
    EXPECT_EQ(0, UiAttribute(PANEL_CONFIG, CONFIG_TERMINAL, ATTR_VISIBLE)) << "the list has it";
    HL_ClosePanel(PANEL_CONFIG);
    EXPECT_FALSE(HL_IsQuit());
    EXPECT_EQ(0, UiPanelAttribute(PANEL_CONFIG, ATTR_VISIBLE));
}

TEST_F(App, StateLineNamesEverySetting)
{
    ASSERT_EQ(0, Start());
    Procesor = 2;
    VR_nProtocol = 7;
    Option_AutoOff = Option_ComWin32 = 0;
    openStruct = 9;
    SetMainPanelStateLine();
    EXPECT_EQ("CPU = ???; prot = ???; st = 1; com = 1, brate = 19200; NI_Com; \nMap ???",
              UiText(mainPanel, MAIN_STATE));
    const struct {
        int state, file, memory;
        const char *text;
    } maps[] = {{OPEN_MAP_FILE, 1, 0, "Map file: a.m66"},
                {OPEN_FROM_MEMORY, 0, 1, "Map loaded from memory."}};
    szMapFileName = "a.m66";
    for (const auto &map : maps) {
        openStruct = map.state;
        SetMainPanelStateLine();
        EXPECT_EQ(
            map.text,
            UiText(mainPanel, MAIN_STATE).substr(UiText(mainPanel, MAIN_STATE).find('\n') + 1));
        EXPECT_EQ(map.file, UiValue(mainPanel, MAIN_LED_MAPFILE));
        EXPECT_EQ(map.memory, UiValue(mainPanel, MAIN_LED_MAPMEM));
    }
    std::string title;
    szDebugFileName = "w.dbg";
    for (const auto &[change, expected] :
         {std::pair(0, "Vireo2  w.dbg"), std::pair(1, "Vireo2 * w.dbg ")}) {
        IsDBGChange = change;
        SetMainPanelTitle();
        GetPanelAttribute(mainPanel, ATTR_TITLE, &title);
        EXPECT_EQ(expected, title);
    }
    IsDBGChange = 0;
}

TEST_F(App, OptionsMenusCheckExactlyWhatIsSet)
{
    ASSERT_EQ(0, Start());
    const struct {
        int click, menu, value;
        int32_t *setting;
    } cases[] = {{ITEM_BAUD_FIRST, MENU_BAUD, 9600, &bRate},
                 {ITEM_BAUD_LAST, MENU_BAUD, 115200, &bRate},
                 {ITEM_PORT_FIRST + 8, MENU_PORT, 9, &ncom},
                 {ITEM_STATION_FIRST, MENU_STATION, 0, &STATION},
                 {ITEM_STATION_LAST, MENU_STATION, 15, &STATION},
                 {ITEM_CPU_C167, MENU_PROCESSOR, 1, &Procesor},
                 {ITEM_CPU_F283XX, MENU_PROCESSOR, 10, &Procesor},
                 {ITEM_CPU_F2803X, MENU_PROCESSOR, 11, &Procesor}};
    for (const auto &c : cases) {
        EXPECT_EQ(0, HL_ClickMenu(c.click));
        EXPECT_EQ(c.value, *c.setting);
        EXPECT_EQ(std::vector<int>{c.click}, Checked(c.menu));
    }
    HL_ClickMenu(ITEM_MODBUS);
    EXPECT_EQ(PROTOCOL_MODBUS, VR_nProtocol);
    EXPECT_EQ(std::vector<int>{ITEM_MODBUS}, Checked(MENU_PROTOCOL));
    HL_ClickMenu(ITEM_AUTO_OFF);
    EXPECT_EQ(0, UiItemAttribute(ITEM_AUTO_OFF, ATTR_CHECKED));
    HL_ClickMenu(ITEM_COM_WIN32);
    EXPECT_EQ(0, Option_ComWin32);
    EXPECT_EQ(0u, HL_GetPopups().back().find("(!) Warning: Use of NI COM services"));
    StationCB(0, 999);
    EXPECT_EQ(1, STATION);
}

TEST_F(App, PortByNumberIsClampedAndCancelKeepsIt)
{
    ASSERT_EQ(0, Start({"-3"}));
    HL_ClickMenu(ITEM_PORT_OTHER);
    EXPECT_EQ(3, ncom) << "cancelled";
    for (const auto &[typed, port] : {std::pair("0", 1), std::pair("999", 256), std::pair("12", 12),
                                      std::pair("x", 1), std::pair("99999999999999999999", 256)}) {
        HL_PushAnswer(1, typed);
        HL_ClickMenu(ITEM_PORT_OTHER);
        EXPECT_EQ(port, ncom) << typed;
    }
    EXPECT_EQ(std::vector<int>{ITEM_PORT_OTHER}, Checked(MENU_PORT));
}

TEST_F(App, DevicePathTakesThePlaceOfANumber)
{
    setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
    ASSERT_EQ(0, Start());
    plug();
    const std::string device = SIM_DevicePath(target);
    HL_PushAnswer(1, " " + device + " ");
    HL_ClickMenu(ITEM_PORT_OTHER);
    const int given = ncom;
    EXPECT_GE(given, 1);
    HL_PushAnswer(1, "/no/such/device");
    HL_ClickMenu(ITEM_PORT_OTHER);
    EXPECT_EQ("Error: There is no device '/no/such/device'.", HL_GetPopups().back());
    EXPECT_EQ(given, ncom);
    HL_PushAnswer(1, "77");
    HL_ClickMenu(ITEM_PORT_OTHER);
    EXPECT_EQ(77, ncom);
    // The same device keeps its number, and the number leads to it.
    HL_PushAnswer(1, device);
    HL_ClickMenu(ITEM_PORT_OTHER);
    EXPECT_EQ(given, ncom);
    HL_Toggle(PANEL_MAIN, MAIN_COMM);
    EXPECT_EQ(1, isTimer);
    unsetenv("XDG_CONFIG_HOME");
}

TEST_F(App, RecentFilesMoveToTheHead)
{
    for (int i = 1; i <= 10; i++)
        AddDebugFileName("f" + std::to_string(i));
    AddDebugFileName("f5");
    AddDebugFileName(std::string(PATH_MAX_CHARS, 'x'));
    ASSERT_EQ(9, nDebugFileNames);
    const char *expected[] = {"f5", "f10", "f9", "f8", "f7", "f6", "f4", "f3", "f2"};
    for (size_t i = 0; i < 9; i++)
        EXPECT_EQ(expected[i], szaDebugFileNames[i]);

    szDebugFileName = "f9";
    ASSERT_EQ(0, Start());
    SetMainPanelAttributes(); // items of the refresh before are gone
    int found = 0;
    for (const int item : HL_GetMenuItems(MENU_FILE))
        if (item >= 1000) {
            const size_t at = static_cast<size_t>(found++);
            EXPECT_EQ("__" + std::to_string(found) + " " + szaDebugFileNames[at],
                      HL_GetMenuText(item));
            EXPECT_EQ(KEY_CTRL | ('0' + found), HL_GetShortcut(item));
            EXPECT_EQ(found == 1, UiItemAttribute(item, ATTR_CHECKED) == 1);
        }
    EXPECT_EQ(9, found);
    EXPECT_EQ("f9", szaDebugFileNames[0]);
}

TEST_F(App, PortThatCannotBeOpenedIsSaidOnceAndLeavesAllOff)
{
    setenv("VIREO2_COM1", (folder / "no-such-port").c_str(), 1);
    ASSERT_EQ(0, Start());
    HL_Toggle(PANEL_MAIN, MAIN_COMM);
    ASSERT_EQ(1u, HL_GetPopups().size());
    EXPECT_EQ("Error: Error opening serial port 'COM1'.\n(port is not available)\n"
              "COM1 (" +
                  (folder / "no-such-port").string() + "): port is not available: no such device",
              HL_GetPopups()[0]);
    EXPECT_EQ(0, isTimer);
    EXPECT_EQ(0, UiValue(mainPanel, MAIN_COMM));
    EXPECT_EQ(1, UiValue(mainPanel, MAIN_STOPPED));
    EXPECT_EQ(-38, Check_ASC_Open(-38));
    EXPECT_EQ("Error: Error opening serial port 'COM1'.\n(bad com number)", HL_GetPopups().back());
}

TEST_F(App, CommunicationGoesOnAndOffAndReopens)
{
    plug();
    ASSERT_EQ(0, Start());
    VR_ComRequest();
    EXPECT_EQ("Message: Enable communication?", HL_GetPopups().back());
    EXPECT_EQ(0, isTimer);
    HL_PushAnswer(1);
    VR_ComRequest();
    EXPECT_EQ(1, isTimer);
    EXPECT_EQ(1, UiValue(mainPanel, MAIN_COMM));
    EXPECT_EQ(0, UiValue(mainPanel, MAIN_STOPPED));
    EXPECT_EQ(1, UiItemAttribute(ITEM_CONNECT, ATTR_CHECKED));
    EXPECT_EQ(0, UiItemAttribute(ITEM_CLOSE_PORT, ATTR_DIMMED));
    EXPECT_EQ(1, HL_FireTimer(PANEL_MAIN, MAIN_TIMER));

    HL_ClickMenu(ITEM_BAUD_LAST);
    EXPECT_EQ(1, UCM_IsOpened());
    EXPECT_EQ(1, HL_FireTimer(PANEL_MAIN, MAIN_TIMER));
    HL_ClickMenu(ITEM_CLOSE_PORT);
    EXPECT_EQ(0, UCM_IsOpened() + isTimer + UiValue(mainPanel, MAIN_COMM));
    EXPECT_EQ(1, UiItemAttribute(ITEM_CLOSE_PORT, ATTR_DIMMED));

    HL_Key(PANEL_MAIN, 0, KEY_F1 + 8);
    EXPECT_EQ(1, isTimer);
    HL_Toggle(PANEL_MAIN, MAIN_COMM);
    EXPECT_EQ(0, HL_FireTimer(PANEL_MAIN, MAIN_TIMER));
    HL_Toggle(PANEL_MAIN, MAIN_COMM);
    EXPECT_EQ(1, HL_FireTimer(PANEL_MAIN, MAIN_TIMER));
    setenv("VIREO2_COM2", (folder / "no-such-port").c_str(), 1);
    HL_ClickMenu(ITEM_PORT_FIRST + 1);
    EXPECT_EQ(0, isTimer) << "the new port cannot be opened";
    EXPECT_EQ(0, HL_FireTimer(PANEL_MAIN, MAIN_TIMER));
    unsetenv("VIREO2_COM2");
}

// What the user wishes to end is ended at the next try, and is no failure that switches off.
TEST_F(App, SwitchingOffBreaksATransferAtTheNextTry)
{
    plug();
    ASSERT_EQ(0, Start());
    HL_ClickMenu(ITEM_CONNECT);
    ASSERT_EQ(1, isTimer);
    uint8_t bytes[640];
    ASSERT_EQ(0, UCM_Read(STATION, 0x1000, sizeof bytes, bytes));
    const uint64_t asked = SIM_GetCounters(target).requests;
    VIEW_Event off;
    off.kind = VIEW_EVENT_MENU;
    off.item = ITEM_CONNECT;
    off.value = 1;
    ASSERT_TRUE(VIEW_Post(off));
    EXPECT_LT(UCM_Read(STATION, 0x1000, sizeof bytes, bytes), 0);
    EXPECT_EQ("cancelled", UCM_LastErrorText());
    EXPECT_EQ(asked, SIM_GetCounters(target).requests);
    VR_AutoOff("wRamp: cancelled");
    EXPECT_EQ(1, isTimer) << "the toggle would switch it on again";
    EXPECT_EQ(HL_CommitControl(PANEL_MAIN, MAIN_BTN_MAP), HL_DIMMED); // any event brings its turn
    EXPECT_EQ(0, isTimer);
}

TEST_F(App, AnEchoIsSaidInTheStateLineWhileItLasts)
{
    plug();
    SIM_Options echo;
    echo.echo = true;
    SIM_SetFaults(target, echo);
    ASSERT_EQ(0, Start());
    HL_Toggle(PANEL_MAIN, MAIN_COMM);
    uint8_t byte = 0;
    EXPECT_LT(UCM_Read(STATION, 0, 1, &byte), 0);
    VR_EnableControls(); // as at the end of a sweep
    const std::string advice = "\nThe line echoes what is sent: switch Win32 services off. Map not";
    EXPECT_TRUE(Has(UiText(mainPanel, MAIN_STATE), advice));
    HL_ClickMenu(ITEM_COM_WIN32);
    EXPECT_EQ(0, UCM_Read(STATION, 0, 1, &byte));
    VR_EnableControls();
    EXPECT_FALSE(Has(UiText(mainPanel, MAIN_STATE), "echoes"));
}

TEST_F(App, UnpluggedTargetSwitchesOffAndIsSwitchedOnAgain)
{
    Mr166_nTimeoutMs = PATIENT_MS; // a port that is gone is not waited for
    plug();
    ASSERT_EQ(0, Start());
    WriteFileText("w.dbg", "[8000], u2\n");
    ASSERT_GE(dat2litems("w.dbg"), 0);
    for (const bool isWin32 : {true, false}) {
        Option_ComWin32 = isWin32;
        HL_Toggle(PANEL_MAIN, MAIN_COMM);
        EXPECT_EQ(1, HL_FireTimer(PANEL_MAIN, MAIN_TIMER));
        EXPECT_EQ("RUN", UiText(mainPanel, MAIN_STATUS));
        EXPECT_EQ(isWin32, MR166_isWin32 != 0);
        unplug();
        setenv("VIREO2_COM1", "/dev/unplugged", 1);
        EXPECT_TRUE(UCM_IsGone());
        EXPECT_EQ(1, HL_FireTimer(PANEL_MAIN, MAIN_TIMER));
        EXPECT_EQ("Communication switched off: [0x8000]: port is gone",
                  UiText(mainPanel, MAIN_MESSAGE));
        EXPECT_EQ(0, isTimer + UCM_IsOpened() + UiValue(mainPanel, MAIN_COMM));
        HL_Toggle(PANEL_MAIN, MAIN_COMM);
        EXPECT_EQ(0, isTimer + UCM_IsOpened() + UiValue(mainPanel, MAIN_COMM))
            << "it is not back yet";
        EXPECT_EQ(1, UiValue(mainPanel, MAIN_STOPPED));
        plug();
        HL_Toggle(PANEL_MAIN, MAIN_COMM);
        EXPECT_EQ(1, HL_FireTimer(PANEL_MAIN, MAIN_TIMER));
        EXPECT_EQ("RUN", UiText(mainPanel, MAIN_STATUS));
        EXPECT_EQ("", UiText(mainPanel, MAIN_MESSAGE));
        HL_ClickMenu(ITEM_CLOSE_PORT);
        EXPECT_EQ("", UiText(mainPanel, MAIN_STATUS));
    }
}

TEST_F(App, DriverChosenWhileModbusIsInUseIsTheOneThatOpens)
{
    plug();
    ASSERT_EQ(0, Start());
    HL_ClickMenu(ITEM_MODBUS);
    UCM_Open(VR_nProtocol, 99, bRate);
    HL_ClickMenu(ITEM_COM_WIN32);
    HL_ClickMenu(ITEM_MR166);
    HL_Toggle(PANEL_MAIN, MAIN_COMM);
    EXPECT_TRUE(Has(UiText(mainPanel, MAIN_STATE), "NI_Com; "));
    EXPECT_EQ(0, MR166_isWin32);
    EXPECT_EQ(1, UCM_IsOpened());
}

TEST_F(App, ViewsSwitchSizesAndOnlyARememberedTimerReopens)
{
    plug();
    ASSERT_EQ(0, Start());
    HL_ClickMenu(ITEM_CONNECT);
    HL_ResizePanel(mainPanel, 600, 900);
    HL_ClickMenu(ITEM_CONSOLE_VIEW);
    EXPECT_EQ(std::vector<int>{ITEM_CONSOLE_VIEW}, Checked(MENU_WINDOW));
    UCM_Close();
    HL_ClickMenu(ITEM_WATCH_VIEW);
    EXPECT_EQ(0, UCM_IsOpened());
    EXPECT_EQ(0, UiPanelAttribute(consolePanel, ATTR_VISIBLE));
    EXPECT_EQ(900, UiPanelAttribute(mainPanel, ATTR_WIDTH)) << "the user's size in both views";
    EXPECT_EQ(600, UiPanelAttribute(mainPanel, ATTR_HEIGHT));
    EXPECT_EQ(std::vector<int>{ITEM_WATCH_VIEW}, Checked(MENU_WINDOW));
    oldTimer = 1;
    HL_ClickMenu(ITEM_WATCH_VIEW);
    EXPECT_EQ(1, UCM_IsOpened());
    HL_ResizePanel(mainPanel, 49, 780);
    EXPECT_EQ(600, UiPanelAttribute(mainPanel, ATTR_HEIGHT)) << "below the least";
}

TEST_F(App, ExitAsksSavesAndQuits)
{
    ASSERT_EQ(0, Start());
    IsDBGChange = 1;
    HL_ClickMenu(ITEM_EXIT);
    EXPECT_FALSE(HL_IsQuit()) << "cancelled";
    EXPECT_FALSE(std::filesystem::exists("Vireo2.ini"));
    HL_PushAnswer(2); // no
    HL_ClosePanel(mainPanel);
    EXPECT_TRUE(HL_IsQuit());
    EXPECT_TRUE(std::filesystem::exists("Vireo2.ini"));
}

// Nobody is asked then, and whoever started the program must hear of it.
TEST_F(App, EndingBySignalWithAnUnsavedListIsNoSuccess)
{
    for (const int isChanged : {0, 1}) {
        ResetProgram();
        ASSERT_EQ(0, Start());
        IsDBGChange = isChanged;
        HL_SetDriver([] { return ProcessSystemEvents(); });
        VIEW_Event end;
        end.kind = VIEW_EVENT_END;
        ASSERT_TRUE(VIEW_Post(end));
        EXPECT_EQ(isChanged, RunUserInterface());
    }
}

TEST_F(App, LibraryFunctionsAreResolvedByName)
{
    VR_DllFn table[] = {{"cos", nullptr}, {"sin", nullptr}, {"no_such_entry", nullptr}};
    EXPECT_EQ(0, VR_LoadDllFnTable("libm.so.6", 2, table));
    EXPECT_EQ(-2, VR_LoadDllFnTable("libm.so.6", 3, table));
    EXPECT_EQ(-1, VR_LoadDllFnTable("no-such-library.dll", 2, table));
    EXPECT_EQ(table[1].address, VR_GetDllFn("sin", 3, table));
    EXPECT_NE(nullptr, table[1].address);
}

} // namespace
