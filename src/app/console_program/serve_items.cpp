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

int AddItem(const std::string &name, const std::string &type, SRV_Json *error)
{
    LItem item;
    const int result = EDT_Parse(name, type, &item);
    if (result < 0) {
        *error = SRV_Error("bad-item", EDT_ErrorText(result));
        return -1;
    }
    aLItems[nLItems] = item;
    return nLItems++;
}

// The number itself; a float that is none (infinite, not a number) has no JSON form.
SRV_Json Number(const LItem &item)
{
    const uint64_t bits = LIT_Bits(item);
    const VTY_Row *row = VTY_Find(item.type);
    if (row->plainForm == 'f') {
        float number = 0;
        const uint32_t low = static_cast<uint32_t>(bits);
        std::memcpy(&number, &low, sizeof number);
        const double value = LIT_IsTMS(item) ? TMS_IEEE(low) : static_cast<double>(number);
        return std::isfinite(value) ? SRV_Json(value) : SRV_Json(nullptr);
    }
    if (row->plainForm != 'i')
        return bits;
    const int shift = 64 - 8 * item.size; // the sign, from the item's size
    return static_cast<int64_t>(bits << shift) >> shift;
}

} // namespace

SRV_Json SRV_Error(const std::string &code, const std::string &message)
{
    return {{"code", code}, {"message", message}};
}

void SRV_ForgetItems()
{
    places.clear();
    nLItems = 0;
}

int SRV_FindItem(const SRV_Json &wanted, bool isKept, SRV_Json *error)
{
    const SRV_Json fields = wanted.is_string() ? SRV_Json{{"name", wanted}} : wanted;
    const SRV_Json name = fields.is_object() ? fields.value("name", SRV_Json()) : SRV_Json();
    const SRV_Json type = fields.is_object() ? fields.value("type", SRV_Json("")) : SRV_Json();
    if (!name.is_string() || !type.is_string()) {
        *error = SRV_Error("bad-request", "an item is a text, or an object with name and type");
        return -1;
    }
    const std::string key = name.get<std::string>() + "\n" + type.get<std::string>();
    const auto known = places.find(key);
    if (known != places.end())
        return known->second;
    if (nLItems == LITEMS_MAX && !isKept)
        SRV_ForgetItems();
    if (nLItems == LITEMS_MAX) {
        *error = SRV_Error("too-many", "more items than can be held: end a watch");
        return -1;
    }
    const int place = AddItem(name.get<std::string>(), type.get<std::string>(), error);
    if (place >= 0)
        places[key] = place;
    return place;
}

SRV_Json SRV_DescribePlace(int index)
{
    const LItem &item = aLItems[index];
    SRV_Json place = {{"name", LIT_Label(item)}};
    if (!LIT_HasAddress(item)) {
        place["error"] = SRV_Error("not-resolved", "no such name in the loaded maps");
        return place;
    }
    place["address"] = item.address;
    place["type"] = VTY_Field(item);
    place["size"] = item.size;
    place["station"] = LIT_Station(item);
    return place;
}

SRV_Json SRV_DescribeValue(int index)
{
    const LItem &item = aLItems[index];
    SRV_Json value = {{"name", LIT_Label(item)}};
    if (item.readError != 0 || !item.isValueGood) {
        value["error"] = SRV_Error(LIT_HasAddress(item) ? "read-failed" : "not-resolved",
                                   item.reason.empty() ? "not read" : item.reason);
        return value;
    }
    std::string text;
    FormatLItemVal(&text, item);
    value["value"] = LIT_HasNumber(item) ? Number(item) : SRV_Json(nullptr);
    value["text"] = WRD_Trim(text);
    value["raw"] = LIT_Bits(item);
    return value;
}
