// The client's items are items of the watch list, so that reading, names and texts are the same as
// there. A place in the list is kept by name and type until places run short.
#include "app/console_program/serve_items.h"

#include <cmath>
#include <cstring>
#include <map>

#include "settings/settings.h"
#include "text/words.h"
#include "watch/list/edit.h"
#include "watch/list/litem.h"
#include "watch/value/tms_float.h"
#include "watch/value/value_types.h"

namespace {

std::map<std::string, int> places; // by text and type

// The number itself; a float that is none (infinite, not a number) has no JSON form.
CPG_Json Number(const LItem &item)
{
    const uint64_t bits = LIT_Bits(item);
    const VAL_TypeRow *row = VAL_FindType(item.type);
    if (row->plainForm == 'f') {
        float number = 0;
        const uint32_t low = static_cast<uint32_t>(bits);
        std::memcpy(&number, &low, sizeof number);
        const double value = LIT_IsTMS(item) ? TMS_IEEE(low) : static_cast<double>(number);
        return std::isfinite(value) ? CPG_Json(value) : CPG_Json(nullptr);
    }
    if (row->plainForm != 'i')
        return bits;
    const int shift = 64 - 8 * item.size; // the sign, from the item's size
    return static_cast<int64_t>(bits << shift) >> shift;
}

} // namespace

CPG_Json CPG_MakeServeError(const std::string &code, const std::string &message)
{
    return {{"code", code}, {"message", message}};
}

void CPG_ForgetServeItems()
{
    places.clear();
    nLItems = 0;
}

int CPG_FindServeItem(const CPG_Json &wanted, bool isKept, CPG_Json *error)
{
    const CPG_Json fields = wanted.is_string() ? CPG_Json{{"name", wanted}} : wanted;
    const CPG_Json name = fields.is_object() ? fields.value("name", CPG_Json()) : CPG_Json();
    const CPG_Json type = fields.is_object() ? fields.value("type", CPG_Json("")) : CPG_Json();
    if (!name.is_string() || !type.is_string()) {
        *error =
            CPG_MakeServeError("bad-request", "an item is a text, or an object with name and type");
        return -1;
    }
    const std::string key = name.get<std::string>() + "\n" + type.get<std::string>();
    // A client asks for the same few items again and again: no name is looked up twice.
    const auto known = places.find(key);
    if (known != places.end())
        return known->second;
    // A watch counts on its places. Without one all are given up at once and filled anew.
    if (nLItems == LITEMS_MAX && !isKept)
        CPG_ForgetServeItems();
    if (nLItems == LITEMS_MAX) {
        *error = CPG_MakeServeError("too-many", "more items than can be held: end a watch");
        return -1;
    }
    // What is refused takes no place.
    LItem item;
    const int result = EDT_Parse(name.get<std::string>(), type.get<std::string>(), &item);
    if (result < 0) {
        *error = CPG_MakeServeError("bad-item", EDT_ErrorText(result));
        return -1;
    }
    aLItems[nLItems] = item;
    places[key] = nLItems;
    return nLItems++;
}

CPG_Json CPG_DescribePlace(int index)
{
    const LItem &item = aLItems[index];
    CPG_Json place = {{"name", LIT_Label(item)}};
    if (!LIT_HasAddress(item)) {
        place["error"] = CPG_MakeServeError("not-resolved", "no such name in the loaded maps");
        return place;
    }
    place["address"] = item.address;
    place["type"] = VAL_TypeField(item);
    place["size"] = item.size;
    place["station"] = LIT_Station(item);
    return place;
}

CPG_Json CPG_DescribeValue(int index)
{
    const LItem &item = aLItems[index];
    CPG_Json value = {{"name", LIT_Label(item)}};
    if (item.readError != 0 || !item.isValueGood) {
        value["error"] = CPG_MakeServeError(LIT_HasAddress(item) ? "read-failed" : "not-resolved",
                                            item.reason.empty() ? "not read" : item.reason);
        return value;
    }
    std::string text;
    FormatLItemVal(&text, item);
    value["value"] = LIT_HasNumber(item) ? Number(item) : CPG_Json(nullptr);
    value["text"] = TXT_Trim(text);
    value["raw"] = LIT_Bits(item);
    return value;
}
