// A test with an empty watch list, empty symbol tables, all panels loaded headless and,
// on demand, a connection to a simulated target.
#ifndef WATCH_FIXTURE_H
#define WATCH_FIXTURE_H

#include <string>

#include <gtest/gtest.h>

#include "comm/communication.h"
#include "comm/ucm.h"
#include "runtime/headless/headless.h"
#include "settings/settings.h"
#include "support/program_state.h"
#include "support/scratch.h"
#include "support/ui_reading.h"
#include "symbols/varnode.h"
#include "ui/resource.h"
#include "watch/list/edit.h"
#include "watch/list/list_file.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"
#include "watch/main_window.h"

class WatchTest : public TargetTest {
protected:
    static constexpr int PORT = 4;

    WatchTest() : TargetTest(PORT)
    {
        HL_LoadAllPanels();
    }

    bool connect()
    {
        plug();
        ncom = PORT;
        VIR2_StartPeriodicASC();
        return isTimer != 0;
    }

    // From here on stations not in the mask are silent. No repetitions, to keep tests short.
    void silenceOthers(uint32_t stations)
    {
        options.stations = stations;
        SIM_SetFaults(target, options);
        UCM_recS.tries = 0;
    }

    // Requests to a command are answered with the target's error code; 0 = answered well.
    void failWith(int command, int code)
    {
        SIM_SetErrorCode(target, command, code);
        UCM_recS.tries = 0;
    }

    void addSymbol(const char *name, uint32_t address)
    {
        ASSERT_EQ(SYM_AddNode(aVarNode, &nNodes, address, name, nullptr), 0);
        SYM_SortByName(aVarNode, nNodes);
        openStruct = OPEN_MAP_FILE;
    }

    void addRegister(const char *name, uint32_t address)
    {
        ASSERT_EQ(SYM_AddNode(aVarNode166, &nNodes166, address, name, nullptr), 0);
        SYM_SortByName(aVarNode166, nNodes166);
        openStruct166 = 1;
    }

    // By its word address, as the mailbox takes it.
    void addTmsSymbol(const char *name, uint32_t words)
    {
        ASSERT_EQ(SYM_AddNode(aVarTMSNode, &nTMSNodes, words, name, nullptr), 0);
        openTMSStruct = 1;
    }

    // One more item, written as a line of a debug file.
    void addItem(const std::string &line)
    {
        content += line + "\n";
        ASSERT_EQ(load(content), 0);
    }

    int load(const std::string &text)
    {
        return dat2litems(write("list.dbg", text).c_str());
    }

    std::string path(const std::string &name)
    {
        return (folder / name).string();
    }

    std::string write(const std::string &name, const std::string &text)
    {
        WriteFileText(path(name), text);
        return path(name);
    }

    const ScratchFolder folder;
    std::string content;
};

// The watch view in front, and a name of each kind.
class WatchViewTest : public WatchTest {
protected:
    void SetUp() override
    {
        VR_isWatchView = true;
        VR_EnableControls();
        addSymbol("wSpeed", 0x300);
        addSymbol("nnCount", 0x304);
        addSymbol("abyRing", 0x308);
        addTmsSymbol("fCurrent", 0x700);
    }
};

#endif
