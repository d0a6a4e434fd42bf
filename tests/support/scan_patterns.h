// The patterns that the system's parsers use, each with the same grammar written by hand
// for PCRE2 (every repetition possessive) and a text it matches and one it does not.
#ifndef TESTS_SUPPORT_SCAN_PATTERNS_H
#define TESTS_SUPPORT_SCAN_PATTERNS_H

#include "text/xscan.h"

struct ScanPattern {
    const char *pattern;
    const char *perl; // anchored at its start
    const char *match;
    const char *noMatch;
    unsigned flags;
};

#define WS "[ \\t-\\r]"
#define ID "[_a-zA-Z][_0-9a-zA-Z]*+"
#define DATE "[0-9][0-9]-[0-9][0-9]-[2-9][0-9][0-9][0-9]"

constexpr ScanPattern SCAN_PATTERNS[] = {
    {"#_a-zA-Z.*#_0-9a-zA-Z.", ID, "motor_speed_ref12 = 5", "7motor_speed", 0},
    {"#_/?a-zA-Z.*#_/?/.0-9a-zA-Z.", "[_?a-zA-Z][_?.0-9a-zA-Z]*+", "drive.axis.pos?x + 4", "[drive",
     0},
    {"#_a-zA-Z.*#_0-9a-zA-Z/./[/].?+*#0-9.", "[_a-zA-Z][_0-9a-zA-Z.\\[\\]]*+\\+?+[0-9]*+",
     "table[12].item+100,", "+100", 0},
    {"@#0-9.", "[0-9]++", "1234567 rest", "x123", 0},
    {"?#+/-.@#0-9.", "[+-]?+[0-9]++", "-32768;", "--5", 0},
    {"?#+/-.@#0-9./.*#0-9.", "[+-]?+[0-9]++\\.[0-9]*+", "-12.375 V", "-12375", 0},
    {"?#+/-.@#0-9.?.*#0-9.#eE.?#+/-.@#0-9.", "[+-]?+[0-9]++\\.?+[0-9]*+[eE][+-]?+[0-9]++", "1.5e-3",
     "1.5", 0},
    {"0x@#0-9a-fA-F.", "0x[0-9a-fA-F]++", "0x1C000 ", "1C000", 0},
    {"#0-9.*#0-9a-fA-F.#hH.", "[0-9][0-9a-fA-F]*+[hH]", "0FFC0h,", "0FFC0,", 0},
    {"* @#0-9A-F.?h* #", WS "*+[0-9A-F]++h?+" WS "*+\\z", "  0ffc0H ", "  0ffc0 x", XSCAN_NOCASE},
    {"* @#0-1.* #", WS "*+[0-1]++" WS "*+\\z", " 1011001110001111 ", " 10112", 0},
    {"* #", WS "*+\\z", "            ", "          x ", 0},
    {"* /#/#* #1-9.*#0-9.* VARS* #", WS "*+##" WS "*+[1-9][0-9]*+" WS "*+VARS" WS "*+\\z",
     "## 1250 VARS", "## 0 VARS", 0},
    {"* /#/#* @#0-9. TYPES* #", WS "*+##" WS "*+[0-9]++" WS "++TYPES" WS "*+\\z", "## 0 TYPES",
     "## 0TYPES", 0},
    {"* /#/#* #1-9.*#0-9.* STRUCTS* #", WS "*+##" WS "*+[1-9][0-9]*+" WS "*+STRUCTS" WS "*+\\z",
     "## 31 STRUCTS", "## 31 STRUCT", 0},
    {"* /#* @#0-9.* //* #1-9.*#0-9.* /:#",
     WS "*+#" WS "*+[0-9]++" WS "*+/" WS "*+[1-9][0-9]*+" WS "*+:\\z", "# 7 / 4:", "# 7 / 0:", 0},
    {"/[#1-9.*#0-9./]", "\\[[1-9][0-9]*+\\]", "[16].x", "[0]", 0},
    {"/_/@0x@#0-9a-fA-F.", "_@0x[0-9a-fA-F]++", "_@0x20000004_@0x122", "_0x20000004", 0},
    {"#uif.#124.", "[uif][124]", "u4", "u8", 0},
    {"#xiu.#124.", "[xiu][124]", "x2", "f2", 0},
    {"f#48.", "f[48]", "f8", "f2", 0},
    {"@@6#0-9A-F.", "[0-9A-F]{6}+", "00C0FFx", "00C0Fx", 0},
    {"*@16^", ".{1,16}+", "prjinfo.map28x and more", "", 0},
    {"*@16#A-Za-z0-9_/-/..", "[A-Za-z0-9_.-]{1,16}+", "prjinfo.map28x\xFF\xFF", "\xFF\xFF", 0},
    {"/.^#A-Za-z0-9_/-/..", "\\.[^#A-Za-z0-9_.-]", ".\xFF", ".map", 0},
    {"*@6#A-Za-z0-9+//.", "[A-Za-z0-9+/]{1,6}+", "BAb/0+zz", ".BA", 0},
    {"*^\r\n.@#\r\n.", "[^\\r\\n]*+[\\r\\n]++", "0000C002 motor_speed_reference_filtered\r\nnext",
     "0000C002 motor_speed_reference_filtered", 0},
    {"* ?\r?\n#", WS "*+\\r?+\\n?+\\z", "   \r\n", "   ;\r\n", 0},
    {"*^/%./%?0?#1-9.l#xXu.", "[^%]*+%0?+[1-9]?+l[xXu]", "value = 0x%08lX;", "value = %d", 0},
    {"* ////* date* /=* #0-9.#0-9./-#0-9.#0-9./-#2-9.#0-9.#0-9.#0-9.",
     WS "*+//" WS "*+date" WS "*+=" WS "*+" DATE, "// date = 31-12-2015, time",
     "// date = 31-12-1999", 0},
    {"* /,* time* /=* #0-9.#0-9./:#0-9.#0-9./:#0-9.#0-9.* #",
     WS "*+," WS "*+time" WS "*+=" WS "*+[0-9][0-9]:[0-9][0-9]:[0-9][0-9]" WS "*+\\z",
     ", time = 23:59:59", ", time = 23:59", 0},
    {"* ////* Uploader v?/.* @#0-9./.@#0-9* #",
     WS "*+//" WS "*+Uploader" WS "++v\\.?+" WS "*+[0-9]++\\.[0-9* #]++", "// Uploader v1.23",
     "// Uploader 1.23", 0},
    {"#\".*^", "\".*+", "\"a quoted value to the end of its line\"", "a quoted value", 0},
    {"*^/<./<* TR* />", "[^<]*+<" WS "*+TR" WS "*+>", "text before < TR >cell", "text before <TD>",
     0},
};

#endif
