// The type of a variable from the prefix of its name.
#ifndef WATCH_VALUE_TYPE_BY_NAME_H
#define WATCH_VALUE_TYPE_BY_NAME_H

struct LItem;

// Sets type and size from the prefix of a name; 1 when a prefix was recognised, else 0
// and the item as it was. The name comes without station prefix and "&".
int DetectTypeByName(LItem *item, const char *name);
int is_id_type(const char *name, const char *prefix);

#endif
