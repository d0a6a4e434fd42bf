// The serial link as the console uses it: open only while a line or a script needs
// it. When the user has switched communication on, the link is his and stays open.
#ifndef CONSOLE_MONITOR_LINK_H
#define CONSOLE_MONITOR_LINK_H

enum CON_LinkQuestion { LINK_NO_QUESTION, LINK_ASK_FOR_PORT };

// Opens the link unless it is open already, and counts the caller in nASC_Opened.
// 0, or -1 when it cannot be opened (reported on the console, nothing counted).
int CON_HoldLink(CON_LinkQuestion question);
// Ends one CON_HoldLink; the last one closes the link, or opens it again when a
// command closed it in the middle of an outer line.
void CON_ReleaseLink();

// Between the two an open link is kept from line to line.
void CON_BeginScript();
void CON_EndScript();

// Port, baud rate or protocol have changed: what is open is opened anew when needed.
void CON_DropLink();

#endif
