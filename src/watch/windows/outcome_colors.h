// How windows color what they say of the target.
#ifndef WATCH_WINDOWS_OUTCOME_COLORS_H
#define WATCH_WINDOWS_OUTCOME_COLORS_H

constexpr int COLOR_PLAIN = 0x1E2A36;
constexpr int COLOR_GOOD = 0x1F8A4C;
constexpr int COLOR_WARN = 0xB35C00; // written, but not held or not verified
constexpr int COLOR_BAD = 0xC01C28;
constexpr int COLOR_OLD = 0x808080; // read some time ago, and perhaps not true any more

#endif
