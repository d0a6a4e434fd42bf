// What answers on a line with the settings of the moment, in words: for the connect page.
// Reads one byte of the station and changes nothing in it. Opens the link for itself and
// closes it again; communication must be off.
#ifndef DIAGNOSTICS_LINE_TEST_H
#define DIAGNOSTICS_LINE_TEST_H

#include <string>

enum LNT_Result {
    LNT_ANSWERS,
    LNT_ECHO,      // what is sent comes back in place of an answer
    LNT_NO_FRAMES, // something comes, but nothing that is an answer
    LNT_SILENT,
    LNT_BAD_STATION, // not in this protocol
    LNT_NO_PORT,     // it cannot be opened
    LNT_CANCELLED,   // by the user
};
// `text` gets a sentence or two for the user.
LNT_Result LNT_Test(std::string *text);

#endif
