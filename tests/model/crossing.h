// A model with a small window, and events posted where a window's thread would have posted them.
#ifndef TESTS_MODEL_CROSSING_H
#define TESTS_MODEL_CROSSING_H

#include <gtest/gtest.h>

#include "model/small_tables.h"
#include "platform/system.h"
#include "runtime/model/door.h"
#include "runtime/model/model.h"

typedef std::vector<std::string> Texts;
inline Texts heard; // what the callbacks have seen, in order

inline VIEW_Event Event(int control, int event)
{
    VIEW_Event made;
    made.event = event;
    made.panel = WINDOW;
    made.control = control;
    return made;
}

inline void Type(const std::string &text, int event = EVENT_VAL_CHANGED)
{
    VIEW_Event typed = Event(FIELD, event);
    typed.text = text;
    VIEW_Post(typed);
}

inline void Click(int index, uint32_t id, int event = EVENT_VAL_CHANGED)
{
    VIEW_Event click = Event(LIST, event);
    click.line = {index, id};
    VIEW_Post(click);
}

inline void Choose(int item)
{
    VIEW_Event event;
    event.kind = VIEW_EVENT_MENU;
    event.item = item;
    VIEW_Post(event);
}

inline std::string Field()
{
    std::string text;
    EXPECT_EQ(0, GetCtrlVal(WINDOW, FIELD, &text));
    return text;
}

inline int Selected()
{
    int index = -2;
    EXPECT_EQ(0, GetCtrlIndex(WINDOW, LIST, &index));
    return index;
}

inline void Fill(const Texts &labels)
{
    ClearListCtrl(WINDOW, LIST);
    for (const std::string &label : labels)
        InsertListItem(WINDOW, LIST, -1, label, 0);
}

inline VIEW_Batch Fetch()
{
    VIEW_Batch batch;
    MDL_Flush();
    VIEW_Fetch(&batch);
    return batch;
}

inline void HandleAll()
{
    while (MDL_HandleNext()) {
    }
}

struct Crossing : testing::Test {
    void SetUp() override
    {
        MDL_Reset();
        heard.clear();
        program = Program();
        ASSERT_EQ(WINDOW, LoadPanel(0, WINDOW));
        Fill({"a", "b", "c"});
        Fetch();
    }
    void TearDown() override
    {
        program = Program();
        MDL_Reset();
    }
};

#endif
