// A file is read whole before anything that is shown is given up for it.
#include "graphs/window_parts.h"

#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "runtime/userint.h"
#include "scope/measure.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/list/litem.h"

#include <vector>

namespace {

bool AskFile(const char *name, const char *pattern, const char *title, int mode, std::string *path)
{
    return FileSelectPopup("", name, pattern, title, mode, path) != CON_NO_FILE_SELECTED;
}

// The type of a column as an item's, so that a recorded name can be sampled again.
SMP_Item ItemOf(const REC_Column &column)
{
    SMP_Item item;
    item.name = column.name;
    item.isTMS = !item.name.empty() && item.name[0] == '&';
    item.address = SMP_NO_ADDRESS;
    if (!column.type.empty())
        item.type = column.type[0];
    if (column.type.size() > 1 && column.type[1] >= '1' && column.type[1] <= '8')
        item.size = column.type[1] - '0';
    return item;
}

// False ends the reading.
bool UpdateReadingBox(void *box, int percent)
{
    return UpdateProgressDialog(*static_cast<int *>(box), percent, "Reading ...") == 0 &&
           !IsBreakWished();
}

} // namespace

bool GRA_OpenData(GRA_Setup *setup, GRA_Source *source, std::string *message)
{
    std::string path, problem;
    message->clear();
    if (!AskFile("*.csv", "*.csv", SCP_OPEN_TEXT, FILE_LOAD, &path))
        return false;
    REC_Recording opened;
    SetBusyText("reading " + path);
    int box = CreateProgressDialog("Graph", "Reading ...");
    const int result = REC_OpenRecording(path, &opened, &problem, UpdateReadingBox, &box);
    DiscardProgressDialog(box);
    if (result == REC_READ_ERR_CANCELLED) {
        *message = "Cancelled.";
        return false;
    }
    if (result < 0) {
        MessagePopup("Error", problem);
        return false;
    }
    // Only now: an unreadable file leaves what is sampled running.
    GRA_StopSource(source);
    GRA_ClearPast(&source->past);
    source->isFile = true;
    source->recording = std::move(opened);
    const REC_Recording &recording = source->recording;
    source->markers.clear();
    for (const REC_Note &note : recording.notes)
        if (note.kind == "marker" && source->markers.size() < GRA_MARKERS_MAX)
            source->markers.push_back({note.time, note.text});
    source->markerCount += source->markers.size() + 1; // others than before
    // Curves are the columns, by place. Each has a pane: they may be of any size.
    setup->curves.clear();
    for (const REC_Column &column : recording.columns) {
        if (setup->curves.size() == GRA_CURVES_MAX)
            break;
        GRA_Curve curve;
        curve.item = ItemOf(column);
        curve.unit = column.unit;
        curve.pane = static_cast<int>(setup->curves.size());
        setup->curves.push_back(curve);
    }
    *message = std::to_string(recording.rows) + " rows";
    if (recording.columns.size() > GRA_CURVES_MAX)
        *message += ", the first 32 columns";
    if (recording.badLines > 0)
        *message += ", " + std::to_string(recording.badLines) + " lines are no rows";
    if (recording.isCut)
        *message += ", the last line is cut off";
    GRA_FitAll();
    return true;
}

void GRA_SaveData(const GRA_Setup &setup, const GRA_Source &source)
{
    std::string path, problem;
    if (!AskFile("graph.csv", "*.csv", "Save view", FILE_SAVE, &path))
        return;
    double from = 0, to = 0;
    GRA_GetTimes(&from, &to);
    if (GRA_SaveCsv(path, source, setup, from, to, &problem) != 0)
        MessagePopup("Error", problem);
}

bool GRA_OpenSetup(GRA_Setup *setup, GRA_Source *source)
{
    std::string path, text;
    std::vector<std::string> problems;
    if (!AskFile("*.graph", "*.graph", "Open graph settings", FILE_LOAD, &path))
        return false;
    if (GRA_LoadSetup(path, setup, &problems) != 0) {
        MessagePopup("Error", PLT_ReadFailureText(path));
        return false;
    }
    // What was sampled belonged to other curves.
    GRA_ClearSource(source);
    UI_GraphView view;
    GetGraphView(PANEL_GRAPH, STRIP_GRAPH, &view);
    view.layout = setup->layout;
    SetGraphView(PANEL_GRAPH, STRIP_GRAPH, view);
    for (const std::string &problem : problems)
        text += problem + "\n";
    if (!text.empty())
        MessagePopup("Graph settings", text);
    return true;
}

void GRA_AskAndSaveSetup(GRA_Setup *setup)
{
    // Beside the watch list, with its name.
    std::string name = szDebugFileName.empty() ? "graph" : szDebugFileName, path;
    const size_t dot = name.find_last_of("./\\");
    if (dot != std::string::npos && name[dot] == '.')
        name.resize(dot);
    if (!AskFile((name + ".graph").c_str(), "*.graph", "Save graph settings", FILE_SAVE, &path))
        return;
    UI_GraphView view;
    GetGraphView(PANEL_GRAPH, STRIP_GRAPH, &view);
    setup->layout = view.layout; // chosen in the graph itself
    if (GRA_SaveSetup(path, *setup) != 0)
        MessagePopup("Error", PLT_SaveFailureText(path));
}

std::string GRA_BeginRecording(const GRA_Setup &setup, GRA_Source *source)
{
    REC_Options options;
    const int chosen =
        FileSelectPopup("", "recording.csv", "*.csv", "Record into", FILE_SAVE, &options.path);
    if (chosen == CON_NO_FILE_SELECTED)
        return "";
    options.mayReplace = chosen == CON_EXISTING_FILE_SELECTED;
    options.periodMs = setup.periodMs;
    if (GRA_RecordSource(source, options) < 0) {
        MessagePopup("Error", source->recorder.file.problem);
        return "";
    }
    return source->recorder.file.isOpen ? "Recording into " + source->recorder.file.path
                                        : "The recording waits for its trigger.";
}
