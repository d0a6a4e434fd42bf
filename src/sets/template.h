// Templates of listings (.tldx): text with places, {{name}}, and blocks that are repeated,
// <!-- row --> ... <!-- /row -->. Parsed once, then filled by listing.cpp.
#ifndef SETS_TEMPLATE_H
#define SETS_TEMPLATE_H

#include "sets/set.h"

#include <string>
#include <vector>

constexpr int64_t PST_TEMPLATE_BYTES_MAX = 0x100000;

enum PST_Block { PST_BLOCK_ALL, PST_BLOCK_GROUP, PST_BLOCK_HEADING, PST_BLOCK_ROW, PST_BLOCK_FILE };

struct PST_Node {
    enum Kind { TEXT, PLACE, BLOCK } kind = TEXT;
    std::string text; // of a place its name
    PST_Block block = PST_BLOCK_ALL;
    std::vector<PST_Node> children;
};

// The whole template as one block. `isPlace` says whether there is a place of that name. 0,
// or -1: it cannot be read, a block does not end or stands where it cannot be, a place is
// unknown, or nothing of a file would show.
int PST_ReadTemplate(const std::string &path, bool (*isPlace)(const std::string &name),
                     PST_Node *root, PST_Problems *problems);

#endif
