// What was read is kept beside what the windows have now: only a list whose widths differ from
// those the program gave it has a line, and a window of this run wins over its line.
#include "app/window_places.h"

#include <map>
#include <set>
#include <sstream>
#include <vector>

#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"

namespace {

constexpr int PANELS_MAX = 64, CONTROLS_MAX = 64;  // all numbers are below
constexpr int PLACE_MAX = 32767;                   // pixels, either way
constexpr int WINDOW_MIN = 50, WINDOW_MAX = 16384; // pixels
constexpr int COLUMN_MAX = 4096;                   // pixels
constexpr size_t COLUMNS_MAX = 16;

typedef std::vector<int> Numbers;

std::map<int, Numbers> readPlaces;                  // by panel: left, top, width, height
std::set<int> laterPlaces;                          // of those, of panels not loaded yet
std::map<std::pair<int, int>, Numbers> readWidths;  // not applied yet
std::map<std::pair<int, int>, Numbers> firstWidths; // as the program gave them

// All numbers of a text; none when anything else stands in it.
Numbers ToNumbers(const std::string &text)
{
    std::istringstream stream(text);
    Numbers numbers;
    for (int number = 0; stream >> number;)
        numbers.push_back(number);
    return stream.eof() ? numbers : Numbers();
}

bool IsWithin(int value, int least, int most)
{
    return value >= least && value <= most;
}

Numbers PlaceNow(int panel)
{
    constexpr int ATTRIBUTES[] = {ATTR_LEFT, ATTR_TOP, ATTR_WIDTH, ATTR_HEIGHT};
    Numbers place;
    for (const int attribute : ATTRIBUTES) {
        int value = 0;
        GetPanelAttribute(panel, attribute, &value);
        place.push_back(value);
    }
    return place;
}

Numbers WidthsNow(int panel, int control)
{
    std::vector<UI_Column> columns;
    Numbers widths;
    if (GetListColumns(panel, control, &columns) < 0)
        return widths;
    for (const UI_Column &column : columns)
        widths.push_back(column.width);
    return widths;
}

void ApplyWidths(int panel, int control, const Numbers &widths)
{
    std::vector<UI_Column> columns;
    GetListColumns(panel, control, &columns);
    if (columns.size() != widths.size()) // of another version of the program
        return;
    for (size_t i = 0; i < columns.size(); i++)
        columns[i].width = widths[i];
    SetListColumns(panel, control, columns);
}

std::string Line(const std::string &start, const Numbers &numbers, const char *endOfLine)
{
    std::string text = start;
    for (const int number : numbers)
        text += " " + std::to_string(number);
    return text + endOfLine;
}

Numbers Join(Numbers front, const Numbers &back)
{
    front.insert(front.end(), back.begin(), back.end());
    return front;
}

// An inspector's further window has a line before it has a window.
bool IsLoaded(int panel)
{
    int isPlaced = 0;
    return GetPanelAttribute(panel, ATTR_IS_PLACED, &isPlaced) >= 0;
}

void UsePlace(int panel)
{
    const Numbers &place = readPlaces[panel];
    SetPanelPos(panel, place[1], place[0]);
    SetPanelAttribute(panel, ATTR_WIDTH, place[2]);
    SetPanelAttribute(panel, ATTR_HEIGHT, place[3]);
    // The console view is sized by this height.
    if (panel == mainPanel)
        oldHeight = place[3];
}

} // namespace

void APP_ForgetPlaces()
{
    laterPlaces.clear();
    readPlaces.clear();
    readWidths.clear();
    firstWidths.clear();
}

// Lines may be written by hand or come from another screen: a window without size, or far away,
// could not be taken hold of any more.
void APP_ReadWindow(const std::string &value)
{
    const Numbers numbers = ToNumbers(value);
    if (numbers.size() != 5 || !IsWithin(numbers[0], 1, PANELS_MAX - 1) ||
        !IsWithin(numbers[1], -PLACE_MAX, PLACE_MAX) ||
        !IsWithin(numbers[2], -PLACE_MAX, PLACE_MAX) ||
        !IsWithin(numbers[3], WINDOW_MIN, WINDOW_MAX) ||
        !IsWithin(numbers[4], WINDOW_MIN, WINDOW_MAX))
        return;
    readPlaces[numbers[0]] = Numbers(numbers.begin() + 1, numbers.end());
    if (IsLoaded(numbers[0]))
        UsePlace(numbers[0]);
    else
        laterPlaces.insert(numbers[0]);
}

void APP_ReadColumns(const std::string &value)
{
    const Numbers numbers = ToNumbers(value);
    if (numbers.size() < 3 || numbers.size() > COLUMNS_MAX + 2)
        return;
    for (size_t i = 2; i < numbers.size(); i++)
        if (!IsWithin(numbers[i], 0, COLUMN_MAX))
            return;
    readWidths[{numbers[0], numbers[1]}] = Numbers(numbers.begin() + 2, numbers.end());
}

void APP_ReadLayout(const std::string &value)
{
    UI_Layout layout;
    std::istringstream stream(value);
    stream >> layout.name;
    std::string rest;
    std::getline(stream, rest, '\0');
    // A layout with anything but numbers in it is none, rather than half of one.
    layout.numbers = ToNumbers(rest);
    if (!layout.numbers.empty())
        SetViewLayout(layout);
}

void APP_ApplyColumns()
{
    for (auto panel = laterPlaces.begin(); panel != laterPlaces.end();) {
        const bool isLoaded = IsLoaded(*panel);
        if (isLoaded)
            UsePlace(*panel);
        panel = isLoaded ? laterPlaces.erase(panel) : std::next(panel);
    }
    for (int panel = 1; panel < PANELS_MAX; panel++)
        for (int control = 1; control < CONTROLS_MAX; control++) {
            const std::pair<int, int> place = {panel, control};
            const Numbers widths = WidthsNow(panel, control);
            // What is no list has no widths. A list is looked at once: later widths are the user's.
            if (widths.empty() || firstWidths.count(place) != 0)
                continue;
            firstWidths[place] = widths;
            if (readWidths.count(place) != 0)
                ApplyWidths(panel, control, readWidths[place]);
        }
}

std::string APP_PlaceLines(const APP_PlaceKeys &keys, const char *endOfLine)
{
    std::map<int, Numbers> places = readPlaces;
    std::map<std::pair<int, int>, Numbers> widths = readWidths;
    for (int panel = 1; panel < PANELS_MAX; panel++) {
        int isPlaced = 0;
        if (GetPanelAttribute(panel, ATTR_IS_PLACED, &isPlaced) >= 0 && isPlaced != 0)
            places[panel] = PlaceNow(panel);
    }
    // Set back to its first widths a list loses its line.
    for (const auto &[place, first] : firstWidths) {
        const Numbers now = WidthsNow(place.first, place.second);
        if (now != first)
            widths[place] = now;
        else
            widths.erase(place);
    }
    std::string text;
    for (const auto &[panel, place] : places)
        text += Line(keys.window + std::string(","), Join({panel}, place), endOfLine);
    for (const auto &[place, list] : widths)
        text += Line(keys.columns + std::string(","), Join({place.first, place.second}, list),
                     endOfLine);
    std::vector<UI_Layout> layouts;
    GetViewLayouts(&layouts);
    for (const UI_Layout &layout : layouts)
        text += Line(keys.layout + (", " + layout.name), layout.numbers, endOfLine);
    return text;
}
