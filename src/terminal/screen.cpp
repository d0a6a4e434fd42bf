// Character by character, so that a control sequence may be cut between two readings.
#include "terminal/screen.h"

#include "terminal/code_pages.h"

namespace {

constexpr size_t TAB = 8;
constexpr char32_t BEYOND_ASCII = 0xB7; // a point in the middle: a character that is none here
enum { NO_ESCAPE, ESCAPE_BEGUN, ESCAPE_PARAMETERS };

void EndLine(TRM_Screen *screen)
{
    screen->done.push_back(TRM_GetScreenLine(*screen));
    screen->line.clear();
    screen->column = 0;
}

void PutCharacter(TRM_Screen *screen, char32_t code)
{
    if (screen->column >= TRM_SCREEN_COLUMNS_MAX)
        EndLine(screen);
    // Behind a carriage return characters replace those that stand there.
    if (screen->column >= screen->line.size())
        screen->line.resize(screen->column + 1, ' ');
    screen->line[screen->column++] = code;
}

void PutControl(TRM_Screen *screen, char control)
{
    switch (control) {
    case '\a':
        screen->isBell = true;
        break;
    case '\b':
        screen->column -= screen->column > 0; // what stands there stays until it is replaced
        break;
    case '\t':
        do
            PutCharacter(screen, ' ');
        while (screen->column % TAB != 0);
        break;
    case '\n':
        EndLine(screen);
        break;
    case '\f':
        // Lines that nobody has fetched yet are gone, too: a log has them only if fetched before.
        screen->line.clear();
        screen->column = 0;
        screen->done.clear();
        screen->isCleared = true;
        break;
    case '\r':
        screen->column = 0;
        break;
    case '\x1B':
        screen->escape = ESCAPE_BEGUN;
        break;
    case '\0': // fills time on slow printers
        break;
    default:
        PutCharacter(screen, BEYOND_ASCII);
    }
}

// Sequences of terminals (colours, cursor moves) are left out, not carried out. A control
// character ends one.
bool IsInEscape(TRM_Screen *screen, char c)
{
    if (screen->escape == NO_ESCAPE)
        return false;
    const bool isControl = static_cast<uint8_t>(c) < ' ';
    if (screen->escape == ESCAPE_BEGUN && c == '[')
        screen->escape = ESCAPE_PARAMETERS;
    else if (screen->escape == ESCAPE_BEGUN || isControl || c >= '@')
        screen->escape = NO_ESCAPE;
    return !isControl;
}

} // namespace

void TRM_PutOnScreen(TRM_Screen *screen, int codePage, const std::string &bytes)
{
    for (const char c : bytes) {
        const auto byte = static_cast<uint8_t>(c);
        if (IsInEscape(screen, c))
            continue;
        if (byte < ' ' || byte == 0x7F) {
            PutControl(screen, c);
            continue;
        }
        const char32_t code = TRM_ToCode(codePage, byte);
        // The upper control characters must not steer whatever shows the text.
        const bool isShown = code >= ' ' && (code < 0x7F || code >= 0xA0);
        PutCharacter(screen, isShown ? code : BEYOND_ASCII);
    }
}

std::string TRM_GetScreenLine(const TRM_Screen &screen)
{
    std::string text;
    for (const char32_t code : screen.line)
        text += TRM_ToUtf8(code);
    return text;
}
