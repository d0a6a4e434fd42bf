// Whose turn it is: ticks, queued events, calls of other threads, urgent wishes and questions.
#include "model/crossing.h"

#include <thread>

namespace {

struct Turns : Crossing {};

TEST_F(Turns, EventsHaveTheirTurnBetweenTwoLateTicks)
{
    program.onTick = [](int) {
        heard.push_back("tick");
        if (heard.size() == 1) {
            PLT_SleepMs(10); // several intervals: those ticks are left out
            VIEW_Post(Event(BUTTON, EVENT_COMMIT));
        } else {
            SuspendTimerCallbacks();
            Choose(ITEM_END);
        }
    };
    program.onControl = [](int, int, int) {
        heard.push_back("event");
        return 0;
    };
    program.onItem = [](int) { QuitUserInterface(0); };
    EXPECT_EQ(UIE_BAD_TYPE, SetCtrlAttribute(WINDOW, TIMER, ATTR_INTERVAL, 0.0));
    SetCtrlAttribute(WINDOW, TIMER, ATTR_INTERVAL, 0.001);
    SetCtrlAttribute(WINDOW, OTHER_TIMER, ATTR_INTERVAL, 86400.0); // not before the last part
    ResumeTimerCallbacks();
    EXPECT_EQ(0, RunUserInterface());
    EXPECT_EQ((Texts{"tick", "event", "tick"}), heard);
    std::vector<MDL_Control> &controls = MDL_GetState().panels[0].controls;
    uint64_t &dueUs = controls[TIMER - 1].dueUs;
    dueUs = 5;
    SetCtrlAttribute(WINDOW, TIMER, ATTR_INTERVAL, 0.001);
    EXPECT_EQ(5u, dueUs) << "the interval it has already puts no tick off";
    SetCtrlAttribute(WINDOW, TIMER, ATTR_INTERVAL, 0.002);
    EXPECT_EQ(0u, dueUs) << "another one counts anew";

    heard.clear();
    program.onTick = [](int timer) {
        heard.push_back(timer == TIMER ? "this" : "other");
        QuitUserInterface(0);
    };
    ResumeTimerCallbacks();
    dueUs = 2;
    controls[OTHER_TIMER - 1].dueUs = 1;
    MDL_GetState().isQuit = false;
    RunUserInterface();
    EXPECT_EQ((Texts{"other"}), heard) << "the one that has waited longest";
}

TEST_F(Turns, AFullQueueRefusesClicksButNoValues)
{
    for (size_t i = 0; i < VIEW_EVENTS_MAX; i++)
        EXPECT_TRUE(VIEW_Post(Event(BUTTON, EVENT_COMMIT))) << i;
    EXPECT_FALSE(VIEW_Post(Event(BUTTON, EVENT_COMMIT)));
    Type("still taken");
    Choose(ITEM_STOP);
    EXPECT_EQ("still taken", Field());
    EXPECT_TRUE(IsBreakWished());
    HandleAll();
    EXPECT_FALSE(IsBreakWished());
    VIEW_Counters counters;
    VIEW_GetCounters(&counters);
    EXPECT_EQ(counters.posted, counters.handled);
    EXPECT_EQ(1u, counters.refused);
}

// What the user chose was the other state of the mark that he saw.
TEST_F(Turns, AMenuItemAlreadyInTheStateThatWasWishedIsLeftAlone)
{
    program.onItem = [](int item) {
        int isOn = 0;
        GetMenuBarAttribute(WINDOW, item, ATTR_CHECKED, &isOn);
        SetMenuBarAttribute(WINDOW, item, ATTR_CHECKED, !isOn);
        heard.push_back(isOn ? "off" : "on");
    };
    const auto choose = [](int wasOn) {
        VIEW_Event event;
        event.kind = VIEW_EVENT_MENU;
        event.item = ITEM_END;
        event.value = wasOn;
        VIEW_Post(event);
        HandleAll();
    };
    SetMenuBarAttribute(WINDOW, ITEM_END, ATTR_CHECKED, 1);
    choose(1);
    choose(1); // it was on for the user, and has gone off by itself
    choose(0);
    EXPECT_EQ(heard, (Texts{"off", "on"}));
}

TEST_F(Turns, DeferredCallsOfAnotherThreadComeBetweenCallbacks)
{
    static size_t called, calledInside;
    called = 0;
    program.onControl = [](int, int, int) {
        std::thread([] {
            for (size_t i = 0; i < VIEW_EVENTS_MAX + 50; i++) // none is refused
                PostDeferredCall([] { called++; });
        }).join();
        IsBreakWished();
        calledInside = called;
        return 0;
    };
    VIEW_Post(Event(BUTTON, EVENT_COMMIT));
    HandleAll();
    EXPECT_EQ(0u, calledInside);
    EXPECT_EQ(VIEW_EVENTS_MAX + 50, called);
}

TEST_F(Turns, UrgentWishesAreSeenAtOnce)
{
    static int box = 0;
    program.onControl = [](int, int, int) {
        VIEW_Event flip = Event(SWITCH, EVENT_COMMIT);
        flip.value = 1;
        VIEW_Post(flip);
        heard.push_back(IsBreakWished() ? "on breaks" : "");
        box = CreateProgressDialog("Reading", "");
        VIEW_Event cancel;
        cancel.kind = VIEW_EVENT_CANCEL;
        cancel.id = box;
        VIEW_Post(cancel);
        heard.push_back(IsBreakWished() ? "cancel breaks" : "");
        heard.push_back(std::to_string(UpdateProgressDialog(box, 50, "half")));
        DiscardProgressDialog(box);
        heard.push_back(IsBreakWished() ? "" : "gone");
        VIEW_Busy busy;
        SetBusyText("waiting for station 9");
        VIEW_GetBusy(&busy);
        heard.push_back(busy.isBusy ? busy.text : "");
        MDL_OnSignal(true);
        heard.push_back(IsBreakWished() ? "interrupt breaks" : "");
        program.onControl = nullptr;
        return 0;
    };
    VIEW_Post(Event(BUTTON, EVENT_COMMIT));
    HandleAll();
    EXPECT_EQ(
        (Texts{"", "cancel breaks", "1", "gone", "waiting for station 9", "interrupt breaks"}),
        heard);
    EXPECT_FALSE(IsBreakWished()) << "what it was to break has ended";
    EXPECT_FALSE(MDL_GetState().isQuit);
    program.onControl = [](int, int, int) {
        MDL_OnSignal(true);
        return 0;
    };
    VIEW_Post(Event(BUTTON, EVENT_COMMIT));
    HandleAll();
    EXPECT_TRUE(MDL_GetState().isQuit) << "nothing that could be broken off";
    VIEW_Busy busy;
    VIEW_GetBusy(&busy);
    EXPECT_FALSE(busy.isBusy);
}

TEST_F(Turns, NothingRunsWhileAQuestionIsOpenAndTheEndClosesIt)
{
    static bool isEnding;
    isEnding = false;
    program.onControl = [](int control, int, int) {
        heard.push_back("control " + std::to_string(control));
        if (control == BUTTON)
            heard.push_back(ConfirmPopup("Title", "Sure?") ? "yes" : "no");
        return 0;
    };
    program.onWake = [] {
        VIEW_Batch batch;
        VIEW_Fetch(&batch);
        if (batch.closedQuestion != 0)
            heard.push_back("closed");
        if (batch.question.id == 0)
            return;
        VIEW_Event answer;
        answer.kind = isEnding ? VIEW_EVENT_END : VIEW_EVENT_ANSWER;
        answer.id = batch.question.id - 1; // of a question long gone
        answer.button = 2;
        if (!isEnding)
            VIEW_Post(answer);
        Type("meanwhile");
        answer.id = batch.question.id;
        answer.button = 1;
        VIEW_Post(answer);
    };
    SetEndCallback([] {
        heard.push_back(ConfirmPopup("Title", "Save?") ? "" : "nobody answers");
        QuitUserInterface(3);
    });
    VIEW_Post(Event(BUTTON, EVENT_COMMIT));
    HandleAll();
    EXPECT_EQ((Texts{"control 5", "yes", "control 1"}), heard);
    heard.clear();
    isEnding = true;
    VIEW_Post(Event(BUTTON, EVENT_COMMIT));
    EXPECT_EQ(3, RunUserInterface());
    EXPECT_EQ((Texts{"control 5", "closed", "no"}), (Texts{heard.begin(), heard.begin() + 3}));
    EXPECT_EQ("nobody answers", heard.back());
}

} // namespace
