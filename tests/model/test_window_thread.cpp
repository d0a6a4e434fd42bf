// The model with a view that plays a window on another thread: after a storm of crossing
// changes and events both sides show the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <thread>

#include "model/small_tables.h"
#include "platform/system.h"
#include "runtime/model/model.h"

namespace {

constexpr int STEPS = 400;
constexpr int LINES = 20;

// The widgets of the window, as far as a user would see them.
struct Window {
    std::string field;
    int count = 0, isOn = 0;
    std::vector<VIEW_Line> lines;
    int current = -1;
    std::string box;
    std::map<uint32_t, std::string> names; // of every line that was ever shown
    std::vector<std::string> clicked;
    bool isEnded = false;
    int answered = 0;

    void Apply(const VIEW_Control &change)
    {
        if (!(change.mask & VIEW_CTRL_VALUE))
            return;
        if (change.control == FIELD)
            field = change.text;
        else if (change.control == COUNT)
            count = static_cast<int>(change.number);
        else if (change.control == SWITCH)
            isOn = change.value;
    }
    void Apply(const VIEW_List &change)
    {
        const size_t known = lines.size();
        lines.resize(static_cast<size_t>(change.count));
        size_t fresh = 0;
        for (const auto &line : change.changed) {
            lines[static_cast<size_t>(line.first)] = line.second;
            fresh += static_cast<size_t>(line.first) >= known;
        }
        EXPECT_EQ(lines.size(), std::min(known, lines.size()) + fresh) << "every new line is told";
        for (const VIEW_Line &line : lines) {
            const auto known_name = names.emplace(line.id, line.label).first;
            EXPECT_EQ(known_name->second, line.label) << "a number is one line's for ever";
        }
        if (change.mask & VIEW_LIST_SELECTION)
            current = change.current;
    }
    void Apply(const VIEW_TextBox &change)
    {
        box = change.isReset ? change.text : box + change.text;
        for (int i = 0; i < change.dropped; i++)
            box.erase(0, box.find('\n') + 1);
    }
    void FetchAndDraw()
    {
        VIEW_Batch batch;
        if (!VIEW_Fetch(&batch))
            return;
        for (const VIEW_Control &change : batch.controls)
            Apply(change);
        for (const VIEW_List &change : batch.lists)
            Apply(change);
        for (const VIEW_TextBox &change : batch.boxes)
            Apply(change);
        if (batch.question.id != 0)
            Answer(batch.question.id);
        isEnded = batch.isEnded;
    }
    void Answer(int id)
    {
        VIEW_Event answer;
        answer.kind = VIEW_EVENT_ANSWER;
        answer.id = id;
        answer.button = 1;
        VIEW_Post(answer);
        answered++;
    }
    void Post(VIEW_Event event, int control, int kind)
    {
        event.panel = WINDOW;
        event.control = control;
        event.event = kind;
        VIEW_Post(event);
    }
    // One thing a user does; the widget shows it before the program knows.
    void Act(int step)
    {
        VIEW_Event event;
        switch (step % 5) {
        case 0:
            field = event.text = "user " + std::to_string(step);
            return Post(event, FIELD, EVENT_VAL_CHANGED);
        case 1:
            event.number = count = step % 100 + 1;
            return Post(event, COUNT, EVENT_VAL_CHANGED);
        case 2:
            event.value = isOn = !isOn;
            return Post(event, SWITCH, EVENT_COMMIT);
        case 3:
            return Post(event, BUTTON, EVENT_COMMIT);
        default:
            if (lines.empty())
                return;
            current = step % static_cast<int>(lines.size());
            const VIEW_Line &line = lines[static_cast<size_t>(current)];
            event.line = {current, line.id};
            clicked.push_back(line.label);
            return Post(event, LIST, EVENT_VAL_CHANGED);
        }
    }
};

std::vector<std::string> selectedByUser; // on the program's thread
std::atomic<bool> isAnySelected;
int ticks, asked;

void FillFrom(int first)
{
    ClearListCtrl(WINDOW, LIST);
    for (int i = first; i < first + LINES - first % 3; i++)
        InsertListItem(WINDOW, LIST, -1, "line " + std::to_string(i), i);
}

void OnTick(int)
{
    ticks++;
    FillFrom(ticks / 4);
    InsertTextBoxLine(WINDOW, BOX, -1, "tick " + std::to_string(ticks));
    if (ticks % 50 == 0)
        DeleteTextBoxLines(WINDOW, BOX, 0, 20);
    if (ticks % 7 == 0)
        SetCtrlVal(WINDOW, FIELD, "program " + std::to_string(ticks));
    if (ticks % 11 == 0)
        SetCtrlVal(WINDOW, SWITCH, 0);
    if (ticks % 13 == 0)
        SetCtrlIndex(WINDOW, LIST, ticks % 10);
}

int OnControl(int control, int event, int)
{
    std::string text;
    int index = -1;
    if (control == LIST && event == EVENT_VAL_CHANGED && GetCtrlIndex(WINDOW, LIST, &index) == 0 &&
        GetLabelFromIndex(WINDOW, LIST, index, &text) == 0) {
        selectedByUser.push_back(text);
        isAnySelected = true;
    }
    if (control == BUTTON && ticks % 5 == 0)
        asked += ConfirmPopup("Title", "Sure?");
    return 0;
}

int RunProgramOfTest(int, char **)
{
    LoadPanel(0, WINDOW);
    SetCtrlAttribute(WINDOW, TIMER, ATTR_INTERVAL, 0.001);
    ResumeTimerCallbacks();
    return RunUserInterface();
}

void WaitUntilHandled(Window *window)
{
    VIEW_Counters counters;
    do {
        window->FetchAndDraw();
        PLT_SleepMs(1);
        VIEW_GetCounters(&counters);
    } while (counters.handled < counters.posted);
}

bool IsSubsequence(const std::vector<std::string> &part, const std::vector<std::string> &whole)
{
    size_t found = 0;
    for (const std::string &text : whole)
        found += found < part.size() && part[found] == text;
    return found == part.size();
}

TEST(WindowThread, BothSidesAgreeAfterAStormOfCrossingChanges)
{
    MDL_Reset();
    ticks = asked = 0;
    selectedByUser.clear();
    isAnySelected = false;
    program = Program();
    program.onTick = OnTick;
    program.onControl = OnControl;
    program.onItem = [](int) { QuitUserInterface(7); };
    Window window;
    std::thread runner([] { VIEW_RunProgram(0, nullptr, RunProgramOfTest); });
    // On a busy machine every click may come too late for its line: then the storm goes on.
    for (int step = 0; step < STEPS || (!isAnySelected && step < 100 * STEPS); step++) {
        window.FetchAndDraw();
        window.Act(step);
        if (step % 3 == 0)
            PLT_SleepMs(1);
    }
    WaitUntilHandled(&window);
    VIEW_Event end;
    end.kind = VIEW_EVENT_MENU;
    end.item = ITEM_END;
    VIEW_Post(end);
    while (!window.isEnded)
        window.FetchAndDraw();
    runner.join();

    const std::vector<MDL_Control> &model = MDL_GetState().panels[0].controls;
    EXPECT_EQ(model[FIELD - 1].state.text, window.field);
    EXPECT_EQ(static_cast<int>(model[COUNT - 1].state.number), window.count);
    EXPECT_EQ(model[SWITCH - 1].state.value, window.isOn);
    EXPECT_EQ(model[LIST - 1].current, window.current);
    ASSERT_EQ(model[LIST - 1].lines.size(), window.lines.size());
    for (size_t i = 0; i < window.lines.size(); i++)
        EXPECT_EQ(model[LIST - 1].lines[i].label, window.lines[i].label);
    std::string box;
    for (const std::string &line : model[BOX - 1].box)
        box += line + "\n";
    EXPECT_EQ(box, window.box);
    EXPECT_TRUE(IsSubsequence(selectedByUser, window.clicked)) << "no click acts on another line";
    EXPECT_FALSE(selectedByUser.empty());
    EXPECT_EQ(asked, window.answered);
    program = Program();
    MDL_Reset();
}

} // namespace
