// A watch item from what a user types: a name or an address, and a type field, suggested from
// the type map or from the name's prefix. Owns nothing and leaves the list alone; edit.h puts
// the items into it.
#ifndef WATCH_LIST_TYPED_ITEM_H
#define WATCH_LIST_TYPED_ITEM_H

#include <string>

struct LItem;

enum EDT_Result {
    EDT_ERR_INDEX = -1,   // no such line
    EDT_ERR_FULL = -2,    // the list holds LITEMS_MAX items
    EDT_ERR_NAME = -3,    // empty, too long, or with characters that a debug file cannot hold
    EDT_ERR_TYPE = -4,    // no such type or size, or not for this item
    EDT_ERR_ADDRESS = -5, // outside the target's memory
    EDT_ERR_NOTHING = -6, // nothing to undo, or to redo
    EDT_ERR_COMMENT = -7, // with its item it would not fit into a line of the debug file
};
const char *EDT_ErrorText(int result); // one sentence; "" for 0 and above

// A type field is "b", "f", "t" or one of i u x p with 1, 2, 4 or 8. "" takes the suggested
// one. TMS320 items have four bytes whatever the field says.

// The item that a text stands for, resolved: "$1F00", "0x1F00" or "[1F00]", each with "&" in
// front for the TMS320, is an address; anything else a name. 0 or EDT_ERR_, *item untouched
// then.
int EDT_Parse(const std::string &text, const std::string &typeField, LItem *item);
// The same for a text that is a name whatever it looks like.
int EDT_ParseName(const std::string &text, const std::string &typeField, LItem *item);
// Gives an item another type. 0 or EDT_ERR_TYPE, *item untouched then.
int EDT_ApplyType(LItem *item, const std::string &typeField);
// An item's type as a user writes it: without a size where there is only one.
std::string EDT_TypeField(const LItem &item);

// Type field for a name ("u2"): from the type map when it knows the name, else from the
// name's prefix (the last member's of a path); "i2" when neither says anything. Station
// prefix and "&" are skipped.
std::string EDT_SuggestType(const std::string &name);
// Sets type and size from the prefix of a name; 1 when a prefix was recognised, else 0
// and the item as it was. The name comes without station prefix and "&".
int DetectTypeByName(LItem *item, const char *name);
// Whether a name has this type prefix, behind the module prefix if it has one: 1 or 0.
int is_id_type(const char *name, const char *prefix);

#endif
