// The pattern scanner every text format is parsed with: one token a call, greedy,
// never backtracking, no allocation. The cursor advances only on a match.
#ifndef TEXT_XSCAN_H
#define TEXT_XSCAN_H

enum {
    XSCAN_NOCASE = 1, // input, literals and set members are upper-cased before comparison
    XSCAN_UPPER = 2,  // copied characters are upper-cased
    XSCAN_LOWER = 4   // copied characters are lower-cased (unless XSCAN_UPPER)
};

// 0 on a match, -1 on none. `output` may be null; it is advanced past the copied text,
// which is NUL-terminated. The caller's buffer must hold the longest token the pattern allows.
int xscan1(const char *pattern, const char **cursor, char **output, unsigned flags);

// Characters consumed (0 or more), or negative on no match.
int xscan(const char *pattern, const char **cursor, char **output = nullptr);
int xscani(const char *pattern, const char **cursor, char **output = nullptr);  // NOCASE
int xscaniu(const char *pattern, const char **cursor, char **output = nullptr); // NOCASE, UPPER
int xscanil(const char *pattern, const char **cursor, char **output = nullptr); // NOCASE, LOWER

// Length of the match copied to `destination`; 0 and "" when nothing matched.
int xscan_strcpy(char *destination, const char *source, const char *pattern);

// Decimal number at *position, which is advanced; -1 when no digit stands there.
int GetLimit(const char **position);

#endif
