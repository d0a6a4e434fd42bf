// Where the user's windows stand and how wide the columns of their lists are, from one run
// to the next: lines of the settings file. What the user never touched has no line, and a
// line whose window was not opened in this run is kept as it was.
#ifndef APP_WINDOW_PLACES_H
#define APP_WINDOW_PLACES_H

#include <string>

void APP_ForgetPlaces(); // before a settings file is read
// The values of the keys, as they stand in the file; what makes no sense is ignored.
void APP_ReadWindow(const std::string &value);  // "PANEL LEFT TOP WIDTH HEIGHT", pixels
void APP_ReadColumns(const std::string &value); // "PANEL CONTROL WIDTH WIDTH ...", pixels
void APP_ReadLayout(const std::string &value);  // "NAME NUMBER NUMBER ...", the view's own
// Gives lists that have got their columns since the last call the widths read for them.
void APP_ApplyColumns();
// The lines to be written, each behind its key and ended by `endOfLine`.
struct APP_PlaceKeys {
    const char *window, *columns, *layout;
};
std::string APP_PlaceLines(const APP_PlaceKeys &keys, const char *endOfLine);

#endif
