// The first steps: the page on which a new user connects, the test of the line in words, the
// ports and their numbers, and what is remembered of windows.

#include "app/connect_page.h"
#include "app/ini_file.h"
#include "app/main_panel.h"
#include "app/startup.h"
#include "app/window_places.h"
#include "comm/communication.h"
#include "diagnostics/line_test.h"
#include "platform/port_list.h"
#include "runtime/view.h"
#include "support/link_fixture.h"

namespace {

struct Connect : LinkTest {
    const ScratchFolder folder{true};

    Connect()
    {
        setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
        ncom = LINK_PORT;
        bRate = LINK_BAUD;
    }
    ~Connect() override
    {
        unsetenv("XDG_CONFIG_HOME");
    }
    static void start()
    {
        static char name[] = "vireo2";
        char *arguments[] = {name, nullptr};
        ASSERT_EQ(0, VR_StartUp(1, arguments));
        ncom = LINK_PORT;
        bRate = LINK_BAUD;
    }
};

TEST_F(Connect, TheLineTestSaysWhatAnswered)
{
    SIM_Options good, echo, absent, noise;
    echo.echo = true;
    absent.stations = 0xFFFD;
    noise.corrupt = 1;
    const struct {
        SIM_Options options;
        int errorCode;
        DIA_LineResult result;
        const char *text;
    } cases[] = {
        {good, 0, DIA_LINE_ANSWERS, "Station 1 answers."},
        {good, 66, DIA_LINE_ANSWERS, "Station 1 answers: target error code 66."},
        {echo, 0, DIA_LINE_ECHO, "The line echoes what is sent: switch Win32 services off."},
        {absent, 0, DIA_LINE_SILENT, "Nothing answers"},
        {noise, 0, DIA_LINE_NO_FRAMES, "Bytes arrive but no frames: wrong baud rate?"},
    };
    for (const auto &item : cases) {
        options = item.options;
        plug();
        SIM_SetErrorCode(target, 0, item.errorCode);
        // Damaged answers are waited out to their end, silence is waited for whole.
        const bool isHeard = item.result == DIA_LINE_ANSWERS || item.result == DIA_LINE_ECHO;
        Mr166_nTimeoutMs = isHeard ? PATIENT_MS : 5 * HASTY_MS;
        UCM_recS.tries = isHeard ? 3 : 0;
        std::string text;
        EXPECT_EQ(item.result, DIA_TestLine(&text)) << text;
        EXPECT_EQ(0u, text.find(item.text)) << text;
        EXPECT_EQ(0, UCM_IsOpened());
        unplug();
    }
    setenv("VIREO2_COM61", (folder / "nothing").c_str(), 1);
    std::string text;
    EXPECT_EQ(DIA_LINE_NO_PORT, DIA_TestLine(&text));
    EXPECT_EQ("COM61 (" + (folder / "nothing").string() +
                  "): port is not available: no such device.",
              text);
    unsetenv("VIREO2_COM61");
    options = good;
    plug();
    STATION = 99;
    EXPECT_EQ(DIA_LINE_BAD_STATION, DIA_TestLine(&text));
    unplug();
}

TEST_F(Connect, ThePageSetsTestsAndStarts)
{
    plug();
    start();
    APP_OpenConnectPage();
    EXPECT_EQ(1, UiPanelAttribute(PANEL_CONNECT, ATTR_VISIBLE));
    EXPECT_EQ(0, UiPanelAttribute(PANEL_CONSOLE, ATTR_VISIBLE));
    const std::vector<std::string> listed = HL_GetLabels(PANEL_CONNECT, CONNECT_PORT);
    const int shown = UiSelected(PANEL_CONNECT, CONNECT_PORT);
    ASSERT_GE(shown, 0);
    EXPECT_EQ(0u, listed[static_cast<size_t>(shown)].find(std::string("COM61: ") +
                                                          SIM_DevicePath(target)));
    EXPECT_EQ("Other...", listed.back());
    EXPECT_EQ(LINK_BAUD, UiValue(PANEL_CONNECT, CONNECT_BAUD));

    HL_SetUserVal(PANEL_CONNECT, CONNECT_STATION, 3);
    EXPECT_EQ(3, STATION);
    HL_CommitControl(PANEL_CONNECT, CONNECT_TEST);
    EXPECT_EQ("Station 3 answers.", UiText(PANEL_CONNECT, CONNECT_RESULT));
    EXPECT_EQ(0, isTimer);
    HL_SetUserVal(PANEL_CONNECT, CONNECT_PROCESSOR, CPU_F2803X);
    HL_CommitControl(PANEL_CONNECT, CONNECT_PROCESSOR);
    EXPECT_EQ(CPU_F2803X, Procesor);
    EXPECT_EQ("", UiText(PANEL_CONNECT, CONNECT_RESULT)) << "no longer what was tested";
    HL_SetUserVal(PANEL_CONNECT, CONNECT_PROTOCOL, PROTOCOL_MODBUS);
    HL_CommitControl(PANEL_CONNECT, CONNECT_PROTOCOL);
    EXPECT_EQ(PROTOCOL_MODBUS, VR_nProtocol);
    HL_SetUserVal(PANEL_CONNECT, CONNECT_PROTOCOL, PROTOCOL_MR166);
    HL_CommitControl(PANEL_CONNECT, CONNECT_PROTOCOL);
    HL_SetUserVal(PANEL_CONNECT, CONNECT_BAUD, 9600);
    HL_CommitControl(PANEL_CONNECT, CONNECT_BAUD);
    EXPECT_EQ(9600, bRate);

    HL_CommitControl(PANEL_CONNECT, CONNECT_START);
    EXPECT_EQ(1, isTimer);
    EXPECT_TRUE(VR_isWatchView);
    EXPECT_EQ(0, UiPanelAttribute(PANEL_CONNECT, ATTR_VISIBLE));
    HL_ClickMenu(ITEM_CONNECT_PAGE);
    HL_CommitControl(PANEL_CONNECT, CONNECT_TEST);
    EXPECT_EQ("Station 3 answers.", UiText(PANEL_CONNECT, CONNECT_RESULT));
    EXPECT_EQ(1, isTimer) << "goes on after the test";
    HL_Key(PANEL_CONNECT, 0, KEY_ESC);
    EXPECT_EQ(0, UiPanelAttribute(PANEL_CONNECT, ATTR_VISIBLE));
    EXPECT_EQ(0, UiPanelAttribute(PANEL_CONSOLE, ATTR_VISIBLE)) << "back to the watch view";
}

TEST_F(Connect, WindowsAndColumnsAreRememberedWhenTheUserSetThem)
{
    APP_ForgetPlaces();
    WriteFileText("Vireo2.ini", "window, 13 30 40 900 600\r\nwindow, 6 1 2 300 -5\r\n"
                                "columns, 13 1 70 0 210\r\nwindow, 15 5 6 400 300\r\n"
                                "layout, 13.split 200 -1\r\nlayout, bad x\r\nlayout, 7\r\n");
    start();
    EXPECT_FALSE(APP_IsSettingsMissing());
    EXPECT_EQ(900, UiPanelAttribute(PANEL_MAIN, ATTR_WIDTH));
    EXPECT_EQ(40, UiPanelAttribute(PANEL_MAIN, ATTR_TOP));
    EXPECT_EQ(600, oldHeight);
    VIEW_Event placed;
    placed.kind = VIEW_EVENT_PLACED;
    placed.panel = PANEL_MAIN;
    placed.rect = {31, 41, 901, 601};
    VIEW_Post(placed);
    const auto columns = [] {
        std::vector<UI_Column> list(3);
        list[0].width = list[1].width = list[2].width = 100;
        return list;
    };
    SetListColumns(PANEL_MAIN, MAIN_LIST, columns());
    SetListColumns(PANEL_TRACE, TRACE_LIST, columns());
    APP_ApplyColumns();
    std::vector<UI_Column> now;
    GetListColumns(PANEL_MAIN, MAIN_LIST, &now);
    ASSERT_EQ(3u, now.size());
    EXPECT_EQ(210, now[2].width);
    VIEW_Event layout;
    layout.kind = VIEW_EVENT_LAYOUT;
    layout.text = "help";
    layout.widths = {1, 2};
    VIEW_Post(layout);
    EXPECT_EQ("w, 13 31 41 901 601\nw, 15 5 6 400 300\nc, 13 1 70 0 210\n"
              "l, 13.split 200 -1\nl, help 1 2\n",
              APP_PlaceLines({"w", "c", "l"}, "\n"))
        << "a bad line goes, one without a window in this run stays, untouched widths have none";
    APP_ReadColumns("13 1 70 x");
    APP_ReadWindow("13 1 2 900 99999");
    EXPECT_EQ(901, UiPanelAttribute(PANEL_MAIN, ATTR_WIDTH));
}

TEST_F(Connect, ThePageRefusesStationsThatTheProtocolHasNot)
{
    start();
    APP_OpenConnectPage();
    const struct {
        int protocol, typed, station;
        const char *problem;
    } rows[] = {
        {PROTOCOL_MR166, 15, 15, ""},
        {PROTOCOL_MR166, 16, 15, "There is no station 16 with mr166: its stations are 0 to 15."},
        {PROTOCOL_MODBUS, 0, 15, "There is no station 0 with Modbus: its stations are 1 to 250."},
        {PROTOCOL_MODBUS, 250, 250, ""},
    };
    for (const auto &row : rows) {
        HL_SetUserVal(PANEL_CONNECT, CONNECT_PROTOCOL, row.protocol);
        HL_CommitControl(PANEL_CONNECT, CONNECT_PROTOCOL);
        HL_SetUserVal(PANEL_CONNECT, CONNECT_STATION, row.typed);
        EXPECT_EQ(row.station, STATION);
        EXPECT_EQ(row.station, UiValue(PANEL_CONNECT, CONNECT_STATION));
        EXPECT_EQ(row.problem, UiText(PANEL_CONNECT, CONNECT_RESULT));
    }
    // The protocol changed behind the number: said at once and again instead of a start.
    HL_SetUserVal(PANEL_CONNECT, CONNECT_PROTOCOL, PROTOCOL_MR166);
    HL_CommitControl(PANEL_CONNECT, CONNECT_PROTOCOL);
    const std::string problem = "There is no station 250 with mr166: its stations are 0 to 15.";
    EXPECT_EQ(problem, UiText(PANEL_CONNECT, CONNECT_RESULT));
    HL_CommitControl(PANEL_CONNECT, CONNECT_START);
    EXPECT_EQ(problem, UiText(PANEL_CONNECT, CONNECT_RESULT));
    EXPECT_EQ(0, isTimer);
    EXPECT_EQ(1, UiPanelAttribute(PANEL_CONNECT, ATTR_VISIBLE));
    EXPECT_EQ(250, STATION) << "not moved to another machine";
}

} // namespace
