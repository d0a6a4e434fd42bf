// From a line of the header to single values: structures, arrays and unions by the type map, rows
// of values without one, areas as pieces of bytes.
#include "sets/expand.h"

#include "comm/sysaddr.h"
#include "sets/value.h"
#include "settings/settings.h"
#include "symbols/assignment.h"
#include "symbols/typemap.h"
#include "text/words.h"

#include <algorithm>

namespace {

struct Spread {
    PST_Set *set = nullptr;
    uint32_t item = 0; // the index it will have
    int32_t cast = 0;  // type of every value of the same size, 0 = as the type map says
};

// An address as these files write it. A digit must come first, or it would be a name.
std::string PieceName(uint32_t address)
{
    return TXT_Format(address < 0xA00000 ? "%06Xh" : "0%06Xh", address);
}

// Every value goes through here: the bounds of the set and of the memory hold for all of them.
std::string AddEntry(const Spread &spread, const std::string &name, int32_t type, uint32_t size,
                     uint32_t address)
{
    PST_Set *set = spread.set;
    if (set->places.size() >= PST_VALUES_MAX)
        return "The set has more than " + std::to_string(PST_VALUES_MAX) + " values.";
    if (address >= ADDR_LIMIT || address + size > ADDR_LIMIT)
        return "'" + name + "' lies beyond the target's memory.";
    const auto index = static_cast<uint32_t>(set->entries.size());
    if (!set->byName.emplace(name, index).second)
        return "'" + name + "' is named twice.";
    set->entries.push_back({name, type, static_cast<uint8_t>(size), spread.item});
    set->places.push_back({address, index, ""});
    return "";
}

// The type of a basic code, 0 when it has none that a line could hold.
int32_t TypeOfCode(uint32_t code)
{
    const int size = TMF_GetElemSize(code);
    if ((code & TMF_KIND) == TMF_FLOAT)
        return size == 4 ? ATP_F4 : 0;
    if ((code & TMF_KIND) != TMF_INTEGER)
        return 0;
    const bool isSigned = (code & TMF_SIGNED) != 0;
    switch (size) {
    case 1:
        return isSigned ? ATP_I1 : ATP_U1;
    case 2:
        return isSigned ? ATP_I2 : ATP_U2;
    case 4:
        return isSigned ? ATP_I4 : ATP_U4;
    default:
        return 0;
    }
}

// One value, of the type map's type or of the header's cast, which may take a part of it.
std::string SpreadBasic(const Spread &spread, const std::string &name, int32_t type, int size,
                        uint32_t address)
{
    // Values of eight bytes come as two of four: lines of a data file know no longer ones.
    if (size == 8 && spread.cast == 0) {
        const std::string why = AddEntry(spread, name, ATP_U4, 4, address);
        return why.empty() ? AddEntry(spread, name + "+4", ATP_U4, 4, address + 4) : why;
    }
    if (type == 0)
        return "'" + name + "' has a type that a set cannot hold.";
    if (spread.cast != 0) {
        if (ATP_SizeOf(static_cast<uint32_t>(spread.cast)) > size)
            return "The type of '" + name + "' is wider than the variable, which has " +
                   std::to_string(size) + " bytes.";
        type = spread.cast;
        size = ATP_SizeOf(static_cast<uint32_t>(type));
    }
    return AddEntry(spread, name, type, static_cast<uint32_t>(size), address);
}

std::string SpreadChain(const Spread &spread, const std::string &name, const uint32_t *chain,
                        uint32_t address, int depth);

// Of a union one member, the first of those that fill it.
std::string SpreadRecord(const Spread &spread, const std::string &name, uint32_t code,
                         uint32_t address, int depth)
{
    const TMF_Struct &record = TMF_paDefStructCts[(code & TMF_VALUE) - 1];
    const bool isUnion = (code & TMF_DERIVATION) == TMF_UNION;
    int chosen = -1;
    int64_t widest = 0;
    std::string why;
    for (int i = 0; i < record.members && why.empty(); ++i) {
        const TMF_Decl *member = nullptr;
        uint32_t kind = 0, offset = 0;
        int32_t size = 0, count = 0, alignment = 0;
        if (TMF_GetStructItemAt(code, i, &member, &offset) != 0 ||
            TMF_GetTypeInfo(member->chain, &kind, &size, &count, &alignment, 0) != 0)
            return "The type map does not say what '" + name + "' consists of.";
        // The members of a union lie over one another, which no set may contain.
        if (!isUnion)
            why = SpreadChain(spread, name + "." + member->name, member->chain, address + offset,
                              depth + 1);
        else if (int64_t{size} * count > widest) {
            widest = int64_t{size} * count;
            chosen = i;
        }
    }
    if (!isUnion || chosen < 0)
        return why;
    const TMF_Decl &member = record.paMembers[chosen];
    return SpreadChain(spread, name + "." + member.name, member.chain, address, depth + 1);
}

std::string SpreadChain(const Spread &spread, const std::string &name, const uint32_t *chain,
                        uint32_t address, int depth)
{
    const uint32_t code = chain[0];
    const uint32_t derivation = code & TMF_DERIVATION;
    // Also a type map that was damaged must end.
    if (depth > TMF_DEPTH_MAX || code == 0 || !TMF_IsTTypeOk(code))
        return "The type map does not say what '" + name + "' consists of.";
    if (TMF_IsRecord(code))
        return SpreadRecord(spread, name, code, address, depth);
    // A pointer is a number here; one to a function may be wider than one to data.
    if (derivation == TMF_POINTER) {
        const int size = TMF_GetPtrSize(Procesor, (chain[1] & TMF_DERIVATION) == TMF_FUNCTION);
        return SpreadBasic(spread, name, size == 4 ? ATP_U4 : ATP_U2, size, address);
    }
    if (derivation == TMF_ARRAY) {
        uint32_t count = 0, stride = 0;
        if (TMF_GetArrayInfo(chain, &count, &stride) != 0)
            return "The type map does not say what '" + name + "' consists of.";
        std::string why;
        for (uint32_t i = 0; i < count && why.empty(); ++i)
            why = SpreadChain(spread, name + "[" + std::to_string(i) + "]", chain + 1,
                              address + i * stride, depth + 1);
        return why;
    }
    if (derivation != 0)
        return "'" + name + "' is a function.";
    return SpreadBasic(spread, name, TypeOfCode(code), TMF_GetElemSize(code), address);
}

// Without a type map: one value, or `count` of them in a row.
std::string SpreadPlain(const Spread &spread, const std::string &name, int32_t type, uint32_t count,
                        uint32_t address)
{
    const auto size = static_cast<uint32_t>(ATP_SizeOf(static_cast<uint32_t>(type)));
    if (size == 0)
        return "The type of '" + name + "' is not known: put it in front, as in (u2) " + name + ".";
    if (count == 0)
        return AddEntry(spread, name, type, size, address);
    std::string why;
    for (uint32_t i = 0; i < count && why.empty(); ++i)
        why =
            AddEntry(spread, name + "[" + std::to_string(i) + "]", type, size, address + i * size);
    return why;
}

// "8140h" is an address of these files only; elsewhere it would be a name.
uint32_t AddressOf(const std::string &reference)
{
    if (reference.back() == 'h' || reference.back() == 'H') {
        double number = 0;
        if (PST_ParseNumber(reference, &number) && number < ADDR_LIMIT)
            return static_cast<uint32_t>(number);
    }
    return GetSysAddr(reference.c_str());
}

std::string UnknownText(const std::string &reference)
{
    return "'" + reference + "' is not in the loaded map" +
           (TMF_cnDefVars > 0 ? " or type map." : ".");
}

// The default must be a value that the variable can have.
std::string CheckDefault(const PST_Set &set, PST_Item *item, const std::string &value)
{
    PST_Attributes *attributes = &item->attributes;
    std::string why;
    PST_Bytes bytes;
    const PST_Entry &first = set.entries[item->firstEntry];
    if (!value.empty()) {
        if (PST_ParseValue(first, "", value, &bytes, &why) != 0)
            return why;
        attributes->defaultValue = PST_Number(first.type, bytes);
        attributes->hasDefault = true;
    }
    // One default for all elements of an array.
    for (uint32_t i = 0; attributes->hasDefault && i < item->entries; ++i) {
        const PST_Entry &entry = set.entries[item->firstEntry + i];
        if (PST_PutNumber(entry.type, attributes->defaultValue, &bytes) != 0)
            return "The default does not fit the type of '" + entry.name + "'.";
        why = PST_CheckLimits(*attributes, entry, bytes);
        if (!why.empty())
            return "The default: " + why;
    }
    return "";
}

} // namespace

std::string PST_ExpandVariable(PST_Set *set, PST_Item *item, const std::string &cast,
                               uint32_t count, const std::string &value)
{
    const uint32_t address = AddressOf(item->reference);
    if (address == ADDR_NONE)
        return UnknownText(item->reference);
    Spread spread;
    spread.set = set;
    spread.item = static_cast<uint32_t>(set->items.size());
    spread.cast = cast.empty() ? 0 : StrToATP(cast.c_str());
    uint32_t chain[TMF_CHAIN_SIZE] = {};
    uint32_t offset = 0;
    std::string why;
    // What the compiler says is worth more than what a name looks like.
    if (count == 0 && TMF_GetEfType(item->reference.c_str(), chain, &offset) == 0)
        why = SpreadChain(spread, item->reference, chain, address, 0);
    else
        why = SpreadPlain(spread, item->reference,
                          spread.cast != 0 ? spread.cast : GetPfx2Type(item->reference.c_str()),
                          count, address);
    if (!why.empty())
        return why;
    // Counted before the default is checked, which is one for all of them.
    item->entries = static_cast<uint32_t>(set->entries.size()) - item->firstEntry;
    why = CheckDefault(*set, item, value);
    set->items.push_back(*item);
    return why;
}

std::string PST_ExpandArea(PST_Set *set, PST_Item *item, uint32_t length)
{
    const uint32_t address = AddressOf(item->reference);
    if (address == ADDR_NONE)
        return UnknownText(item->reference);
    Spread spread;
    spread.set = set;
    spread.item = static_cast<uint32_t>(set->items.size());
    std::string why;
    for (uint32_t at = 0; at < length && why.empty();) {
        // Lines begin at round addresses, so that areas of different starts compare well.
        const auto room = static_cast<uint32_t>(PST_PIECE_MAX - (address + at) % PST_PIECE_MAX);
        const uint32_t size = std::min(length - at, room);
        why = AddEntry(spread, PieceName(address + at), 0, size, address + at);
        at += size;
    }
    item->entries = static_cast<uint32_t>(set->entries.size()) - item->firstEntry;
    set->items.push_back(*item);
    return why;
}

std::string PST_ExpandMirror(PST_Set *set, const PST_Item &source, const std::string &cast,
                             const std::string &reference)
{
    const uint32_t address = AddressOf(reference);
    if (address == ADDR_NONE)
        return UnknownText(reference);
    const PST_Entry &first = set->entries[source.firstEntry];
    if (!cast.empty() && StrToATP(cast.c_str()) != first.type)
        return "The mirror '" + reference + "' must have the type of '" + source.reference + "'.";
    // Each value lies in the mirror where it lies in the source; gaps are mirrored as gaps.
    const uint32_t base = set->places[source.firstEntry].address;
    for (uint32_t i = 0; i < source.entries; ++i) {
        const uint32_t index = source.firstEntry + i;
        const PST_Entry &entry = set->entries[index];
        const uint32_t at = set->places[index].address - base + address;
        if (at >= ADDR_LIMIT || at + entry.size > ADDR_LIMIT)
            return "The mirror '" + reference + "' lies beyond the target's memory.";
        if (set->places.size() + set->mirrors.size() >= PST_VALUES_MAX)
            return "The set has more than " + std::to_string(PST_VALUES_MAX) + " values.";
        // Named as the source is, behind the mirror's own beginning.
        const bool isPart = entry.name.compare(0, source.reference.size(), source.reference) == 0;
        const std::string name =
            isPart ? reference + entry.name.substr(source.reference.size()) : PieceName(at);
        set->mirrors.push_back({at, index, name});
    }
    return "";
}
