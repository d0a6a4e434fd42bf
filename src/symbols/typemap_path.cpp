// Look-ups over the type map: variables and types by name, members, indexes, and the
// expressions made of them.
#include <cstdlib>
#include <cstring>
#include <string>
#include <unordered_map>

#include "settings/settings.h"
#include "symbols/typemap.h"
#include "text/xscan.h"

namespace {

// As the map has them: "?" stands in names of static variables.
constexpr const char *IDENTIFIER = "#_/?a-zA-Z.*#_/?0-9a-zA-Z.";

// Position of each name's first declaration; built at the first look-up after a load.
struct NameIndex {
    bool built = false;
    std::unordered_map<std::string, int32_t> vars;
    std::unordered_map<std::string, int32_t> types;
};
NameIndex names;

void IndexDecls(const TMF_Decl *table, int32_t count,
                std::unordered_map<std::string, int32_t> *index)
{
    for (int32_t i = 0; i < count; ++i)
        if (table[i].name[0] != '\0')
            index->emplace(table[i].name, i);
}

const NameIndex &Names()
{
    if (!names.built) {
        IndexDecls(TMF_paDefVars, TMF_cnDefVars, &names.vars);
        IndexDecls(TMF_paDefTypes, TMF_cnDefTypes, &names.types);
        names.built = true;
    }
    return names;
}

// Of all elements together, for the place of what follows.
bool SizeOf(const uint32_t *chain, int64_t *bytes, int32_t *alignment)
{
    uint32_t kind = 0;
    int32_t size = 0, count = 0;
    if (TMF_GetTypeInfo(chain, &kind, &size, &count, alignment, 0) != 0)
        return false;
    *bytes = static_cast<int64_t>(size) * count;
    return true;
}

// Where expression evaluation stands: what is designated and where it lies.
struct Place {
    const uint32_t *chain;
    uint32_t offset;
};

bool SelectMember(const char **cursor, Place *place)
{
    char member[TMF_NAME_SIZE + 1];
    // The scanner moves the cursor behind the name: where the name begins is found by a second one.
    const char *start = *cursor;
    if (xscan("* /.* #_a-zA-Z.*#_0-9a-zA-Z.", cursor) < 0)
        return false;
    xscan("* /.* ", &start);
    const size_t length = static_cast<size_t>(*cursor - start);
    // Longer than any name that a type map can hold.
    if (length >= sizeof member)
        return false;
    std::memcpy(member, start, length);
    member[length] = '\0';
    const TMF_Decl *decl = nullptr;
    uint32_t offset = 0;
    if (TMF_GetStructItemInfo(place->chain[0], member, &decl, &offset) != 0)
        return false;
    place->chain = decl->chain;
    place->offset += offset;
    return true;
}

bool SelectElement(const char **cursor, Place *place)
{
    uint32_t index = 0, count = 0, stride = 0;
    if (TMF_GetIndexor(cursor, &index) != 0 ||
        TMF_GetArrayInfo(place->chain, &count, &stride) != 0 || index >= count)
        return false;
    ++place->chain;
    place->offset += index * stride;
    return true;
}

uint32_t RecordCode(const uint32_t *chain)
{
    return TMF_IsRecord(chain[0]) ? chain[0] : 0;
}

} // namespace

void TMF_ForgetNames()
{
    names = NameIndex();
}

const TMF_Decl *TMF_FindVarDecl(const char *name)
{
    const auto &vars = Names().vars;
    auto found = vars.find(name);
    // Linkers of the TMS320 put "_" in front of a name of the source.
    if (found == vars.end() && name[0] == '_')
        found = vars.find(name + 1);
    return found == vars.end() ? nullptr : &TMF_paDefVars[found->second];
}

int TMF_TypeSubst(const char *typeName, uint32_t *chain)
{
    const auto found = Names().types.find(typeName);
    if (found == Names().types.end())
        return -1;
    std::memcpy(chain, TMF_paDefTypes[found->second].chain, TMF_CHAIN_SIZE * sizeof *chain);
    return 0;
}

const char *TMF_FindTypeName(uint32_t code)
{
    const uint32_t plain = code & ~static_cast<uint32_t>(TMF_MODIFIER);
    for (int32_t i = 0; i < TMF_cnDefTypes; ++i) {
        const TMF_Decl &type = TMF_paDefTypes[i];
        if (type.codes == 1 && type.name[0] != '\0' && type.chain[0] == plain)
            return type.name;
    }
    return nullptr;
}

bool TMF_IsStructName(const char *typeName)
{
    uint32_t chain[TMF_CHAIN_SIZE];
    return TMF_TypeSubst(typeName, chain) == 0 && TMF_IsRecord(chain[0]);
}

bool TMF_MemberOffsets(uint32_t code, std::vector<uint32_t> *offsets)
{
    if (!TMF_IsRecord(code) || !TMF_IsTTypeOk(code))
        return false;
    const TMF_Struct &record = TMF_paDefStructCts[(code & TMF_VALUE) - 1];
    const bool isUnion = (code & TMF_DERIVATION) == TMF_UNION;
    int64_t end = 0;
    for (int i = 0; i < record.members; ++i) {
        int64_t bytes = 0;
        int32_t alignment = 1;
        if (!SizeOf(record.paMembers[i].chain, &bytes, &alignment))
            return false;
        // Members have no offsets in the file: where they lie follows from sizes and alignments.
        const int64_t start = isUnion ? 0 : TMF_PlaceMember(end, alignment);
        end = start + bytes;
        if (end > INT32_MAX)
            return false;
        offsets->push_back(static_cast<uint32_t>(start));
    }
    return true;
}

int TMF_GetStructItemAt(uint32_t code, int position, const TMF_Decl **decl, uint32_t *offset)
{
    if (!TMF_IsRecord(code) || !TMF_IsTTypeOk(code))
        return -1;
    const TMF_Struct &record = TMF_paDefStructCts[(code & TMF_VALUE) - 1];
    std::vector<uint32_t> offsets;
    if (position < 0 || position >= record.members || !TMF_MemberOffsets(code, &offsets))
        return -1;
    *decl = &record.paMembers[position];
    *offset = offsets[static_cast<size_t>(position)];
    return 0;
}

int TMF_GetStructItemInfo(uint32_t code, const char *member, const TMF_Decl **decl,
                          uint32_t *offset)
{
    if (!TMF_IsRecord(code) || !TMF_IsTTypeOk(code))
        return -1;
    const TMF_Struct &record = TMF_paDefStructCts[(code & TMF_VALUE) - 1];
    for (int i = 0; i < record.members; ++i)
        if (std::strcmp(record.paMembers[i].name, member) == 0)
            return TMF_GetStructItemAt(code, i, decl, offset);
    return -1;
}

int TMF_GetArrayInfo(const uint32_t *chain, uint32_t *count, uint32_t *stride)
{
    int64_t bytes = 0;
    int32_t alignment = 1;
    // The stride needs no padding: a structure's size is a multiple of its alignment.
    if ((chain[0] & (TMF_INVALID | TMF_DERIVATION)) != TMF_ARRAY ||
        !SizeOf(chain + 1, &bytes, &alignment) || bytes > INT32_MAX)
        return -1;
    *count = chain[0] & TMF_VALUE;
    *stride = static_cast<uint32_t>(bytes);
    return *count * static_cast<int64_t>(bytes) <= INT32_MAX ? 0 : -1;
}

int TMF_GetIndexor(const char **cursor, uint32_t *index)
{
    const char *digits = *cursor;
    if (xscan("* /[* ", &digits) < 0)
        return -1;
    const char *end = digits;
    const bool isHex = xscani("0x@#0-9A-F.", &end) >= 0;
    if (!isHex && xscan("@#0-9.", &end) < 0)
        return -1;
    if (xscan("* /]", &end) < 0)
        return -1;
    const unsigned long value = std::strtoul(digits, nullptr, isHex ? 16 : 10);
    // Saturates: an index of many digits must not come round to a good one.
    *index = value > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(value);
    *cursor = end;
    return 0;
}

int TMF_GetEfType(const char *expression, uint32_t *chain, uint32_t *offset)
{
    const char *cursor = expression;
    xscan("* ", &cursor);
    const char *start = cursor;
    if (xscan(IDENTIFIER, &cursor) < 0)
        return -1;
    const TMF_Decl *root = TMF_FindVarDecl(std::string(start, cursor).c_str());
    if (root == nullptr)
        return -1;
    Place place = {root->chain, 0};
    while (xscan("* #", &cursor) < 0)
        if (!SelectMember(&cursor, &place) && !SelectElement(&cursor, &place))
            return -1;
    *offset = place.offset;
    // Behind the end zeros: callers walk the chain up to the first of them.
    if (chain != nullptr) {
        std::memset(chain, 0, TMF_CHAIN_SIZE * sizeof *chain);
        for (int i = 0; i < TMF_CHAIN_SIZE && place.chain[i] != 0; ++i)
            chain[i] = place.chain[i];
    }
    return 0;
}

int TMF_GetEfTypeFor(int processor, const char *expression, uint32_t *chain, uint32_t *offset)
{
    // Sizes of pointers and alignments are those of the processor that is asked about, which may be
    // the one behind the station.
    const int32_t selected = Procesor;
    Procesor = processor;
    const int result = TMF_GetEfType(expression, chain, offset);
    Procesor = selected;
    return result;
}

uint32_t TMF_GetRootStruct(const char *variable)
{
    const TMF_Decl *decl = TMF_FindVarDecl(variable);
    return decl != nullptr ? RecordCode(decl->chain) : 0;
}

uint32_t TMF_GetRootAStruct(const char *variable)
{
    const TMF_Decl *decl = TMF_FindVarDecl(variable);
    if (decl == nullptr)
        return 0;
    const uint32_t *chain = decl->chain;
    while ((chain[0] & TMF_DERIVATION) == TMF_ARRAY)
        ++chain;
    return chain != decl->chain ? RecordCode(chain) : 0;
}
