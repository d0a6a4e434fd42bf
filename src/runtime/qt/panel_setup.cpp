// Panel numbers to the code that uic makes of their Designer files. A new panel is a row here; the
// inspectors, ten of each kind, share a layout.
#include "runtime/qt/qt_view.h"

#include "ui/resource.h"
#include "ui_array.h"
#include "ui_config.h"
#include "ui_config_edit.h"
#include "ui_connect.h"
#include "ui_console.h"
#include "ui_data_log.h"
#include "ui_debugger.h"
#include "ui_graph.h"
#include "ui_item.h"
#include "ui_lcd.h"
#include "ui_loader.h"
#include "ui_main.h"
#include "ui_memory.h"
#include "ui_record.h"
#include "ui_scope.h"
#include "ui_simulator.h"
#include "ui_statistics.h"
#include "ui_struct_selector.h"
#include "ui_terminal.h"
#include "ui_terminal_entry.h"
#include "ui_trace.h"
#include "ui_value.h"
#include "ui_var_selector.h"

namespace {

// The form is needed no longer: widgets are found by their names (QTV_BindControl).
template <class Form> void Setup(QWidget *window)
{
    Form form;
    form.setupUi(window);
}

constexpr int MORE_INSPECTORS = PANEL_RECORD_MORE - PANEL_ARRAY_MORE; // of each kind

struct SetupRow {
    int first; // number of the panel, or of the first of several
    void (*setup)(QWidget *window);
    int count = 1;
};

const SetupRow SETUP_ROWS[] = {
    {PANEL_ITEM, Setup<Ui::ItemPanel>},
    {PANEL_CONFIG_EDIT, Setup<Ui::ConfigEditPanel>},
    {PANEL_VALUE, Setup<Ui::ValuePanel>},
    {PANEL_MEMORY, Setup<Ui::MemoryPanel>},
    {PANEL_STATISTICS, Setup<Ui::StatisticsPanel>},
    {PANEL_CONFIG, Setup<Ui::ConfigPanel>},
    {PANEL_DEBUGGER, Setup<Ui::DebuggerPanel>},
    {PANEL_CONSOLE, Setup<Ui::ConsolePanel>},
    {PANEL_CONNECT, Setup<Ui::ConnectPanel>},
    {PANEL_MAIN, Setup<Ui::MainPanel>},
    {PANEL_TRACE, Setup<Ui::TracePanel>},
    {PANEL_LOADER, Setup<Ui::LoaderPanel>},
    {PANEL_DATA_LOG, Setup<Ui::DataLogPanel>},
    {PANEL_TERMINAL_ENTRY, Setup<Ui::TerminalEntryPanel>},
    {PANEL_SCOPE, Setup<Ui::ScopePanel>},
    {PANEL_GRAPH, Setup<Ui::GraphPanel>},
    {PANEL_STRUCT_SELECTOR, Setup<Ui::StructSelectorPanel>},
    {PANEL_VAR_SELECTOR, Setup<Ui::VarSelectorPanel>},
    {PANEL_ARRAY, Setup<Ui::ArrayPanel>},
    {PANEL_RECORD, Setup<Ui::RecordPanel>},
    {PANEL_ARRAY_MORE, Setup<Ui::ArrayPanel>, MORE_INSPECTORS},
    {PANEL_RECORD_MORE, Setup<Ui::RecordPanel>, MORE_INSPECTORS},
    {PANEL_SIMULATOR, Setup<Ui::SimulatorPanel>},
    {PANEL_TERMINAL, Setup<Ui::TerminalPanel>},
    {PANEL_LCD, Setup<Ui::LcdPanel>},
};

} // namespace

bool QTV_SetupPanel(int panel, QWidget *window)
{
    for (const SetupRow &row : SETUP_ROWS) {
        if (panel < row.first || panel >= row.first + row.count)
            continue;
        row.setup(window);
        return true;
    }
    return false;
}
