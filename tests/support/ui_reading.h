// What a panel, a control or a menu item shows, each by one call that must succeed.
#ifndef TESTS_SUPPORT_UI_READING_H
#define TESTS_SUPPORT_UI_READING_H

#include <gtest/gtest.h>
#include <string>

#include "runtime/userint.h"
#include "ui/resource.h"

inline std::string UiText(int panel, int control)
{
    std::string text;
    EXPECT_EQ(GetCtrlVal(panel, control, &text), 0) << control;
    return text;
}

inline int UiValue(int panel, int control)
{
    int value = -1;
    EXPECT_EQ(GetCtrlVal(panel, control, &value), 0) << control;
    return value;
}

inline int UiAttribute(int panel, int control, int attribute)
{
    int value = -1;
    EXPECT_EQ(GetCtrlAttribute(panel, control, attribute, &value), 0) << control;
    return value;
}

inline int UiPanelAttribute(int panel, int attribute)
{
    int value = -1;
    EXPECT_EQ(GetPanelAttribute(panel, attribute, &value), 0) << panel;
    return value;
}

inline int UiItemAttribute(int item, int attribute)
{
    int value = -1;
    EXPECT_EQ(GetMenuBarAttribute(GetPanelMenuBar(PANEL_MAIN), item, attribute, &value), 0) << item;
    return value;
}

inline int UiSelected(int panel, int list)
{
    int line = -2;
    EXPECT_EQ(GetCtrlIndex(panel, list, &line), 0) << list;
    return line;
}

#endif
