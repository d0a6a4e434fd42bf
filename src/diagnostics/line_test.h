// What answers on a line with the settings of the moment, in words: for the connect page.
// Reads one byte of the station and changes nothing in it. Opens the link for itself and
// closes it again; communication must be off.
#ifndef DIAGNOSTICS_LINE_TEST_H
#define DIAGNOSTICS_LINE_TEST_H

#include <string>

enum DIA_LineResult {
    DIA_LINE_ANSWERS,
    DIA_LINE_ECHO,      // what is sent comes back in place of an answer
    DIA_LINE_NO_FRAMES, // something comes, but nothing that is an answer
    DIA_LINE_SILENT,
    DIA_LINE_BAD_STATION, // not in this protocol
    DIA_LINE_NO_PORT,     // it cannot be opened
    DIA_LINE_CANCELLED,   // by the user
};
// `text` gets a sentence or two for the user.
DIA_LineResult DIA_TestLine(std::string *text);

#endif
