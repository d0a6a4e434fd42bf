// Types as a C programmer writes them, and rows for the selectors: variables, members, elements.
#include "symbols/typemap_list.h"

#include <algorithm>
#include <cctype>

#include "symbols/typemap.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"

namespace {

constexpr uint32_t NO_ADDRESS = 0xFFFFFFFFu;

std::string BasicName(uint32_t code)
{
    const int size = TMF_GetElemSize(code);
    const std::string bits = std::to_string(size * 8) + "_t";
    switch (code & TMF_KIND) {
    case TMF_VOID:
        return "void";
    case TMF_FLOAT:
        return size == 4 ? "float" : size == 8 ? "double" : "float" + bits;
    default:
        return ((code & TMF_UNSIGNED) != 0 ? "uint" : "int") + bits;
    }
}

// A structure without a name has its number, so that two of them can be told apart.
std::string RecordName(uint32_t code)
{
    if (const char *name = TMF_FindTypeName(code))
        return name;
    const bool isUnion = (code & TMF_DERIVATION) == TMF_UNION;
    return (isUnion ? "union #" : "struct #") + std::to_string(code & TMF_VALUE);
}

// Type letter of a chain's innermost plain value; false for structures and functions.
bool ItemOfChain(const uint32_t *chain, char *type, int *size)
{
    while ((chain[0] & TMF_DERIVATION) == TMF_ARRAY)
        ++chain;
    uint32_t kind = 0;
    int32_t bytes = 0, count = 0, alignment = 0;
    if (TMF_IsRecord(chain[0]) ||
        TMF_GetTypeInfo(chain, &kind, &bytes, &count, &alignment, 0) != 0 || bytes < 1)
        return false;
    *size = bytes;
    // A pointer is an address: nobody reads it in decimal.
    if ((chain[0] & TMF_DERIVATION) == TMF_POINTER)
        *type = 'x';
    else if ((chain[0] & TMF_KIND) == TMF_FLOAT)
        *type = bytes == 4 ? 'f' : 'x'; // only 4-byte floats have a display of their own
    else
        *type = (chain[0] & TMF_UNSIGNED) != 0 ? 'u' : 'i';
    return true;
}

bool HasParts(const uint32_t *chain)
{
    std::vector<uint32_t> offsets;
    uint32_t count = 0, stride = 0;
    if (TMF_IsRecord(chain[0])) // one that does not resolve opens no empty branch
        return TMF_MemberOffsets(chain[0], &offsets);
    return TMF_GetArrayInfo(chain, &count, &stride) == 0 && count > 0;
}

void DescribeType(const std::string &name, const uint32_t *chain, TMF_ListRow *row)
{
    uint32_t kind = 0;
    int32_t bytes = 0, count = 0, alignment = 0;
    row->declaration = TMF_FormatDecl(name, chain);
    // A chain that makes no declaration still has a line of its own.
    if (row->declaration.empty())
        row->declaration = name;
    if (TMF_GetTypeInfo(chain, &kind, &bytes, &count, &alignment, 0) == 0)
        row->size = bytes * count;
    row->hasParts = HasParts(chain);
    ItemOfChain(chain, &row->itemType, &row->itemSize);
}

bool ContainsNoCase(const std::string &text, const std::string &part)
{
    auto equal = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) ==
               std::tolower(static_cast<unsigned char>(b));
    };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), equal) != text.end();
}

TMF_ListRow MakePart(const std::string &expression, const std::string &name, uint32_t address,
                     const uint32_t *chain)
{
    TMF_ListRow row;
    row.expression = expression;
    row.address = address;
    DescribeType(name, chain, &row);
    return row;
}

} // namespace

// Built from the name outwards: arrays and functions stand behind it, pointers before it, in
// brackets when an array or a function follows.
std::string TMF_FormatDecl(const std::string &name, const uint32_t *chain)
{
    std::string text = name;
    bool afterPointer = false;
    for (int i = 0; i < TMF_CODES_MAX; ++i) {
        const uint32_t code = chain[i];
        const uint32_t derivation = code & TMF_DERIVATION;
        if (code == 0 || !TMF_IsTTypeOk(code))
            return "";
        if (derivation == 0 || TMF_IsRecord(code)) {
            const std::string type = derivation == 0 ? BasicName(code) : RecordName(code);
            return text.empty() ? type : type + " " + text;
        }
        if (derivation == TMF_POINTER) {
            text = "*" + text;
        } else {
            if (afterPointer)
                text = "(" + text + ")";
            text += derivation == TMF_ARRAY ? "[" + std::to_string(code & TMF_VALUE) + "]" : "()";
        }
        afterPointer = derivation == TMF_POINTER;
    }
    return "";
}

std::vector<TMF_ListRow> TMF_ListVariables(const char *filter)
{
    std::vector<TMF_ListRow> rows;
    for (int i = 0; i < nNodes; ++i) {
        if (!ContainsNoCase(aVarNode[i].name, filter))
            continue;
        TMF_ListRow row;
        row.expression = row.declaration = aVarNode[i].name; // all there is without a type map
        row.address = aVarNode[i].addr;
        if (const TMF_Decl *decl = TMF_FindVarDecl(aVarNode[i].name))
            DescribeType(row.expression, decl->chain, &row);
        rows.push_back(row);
    }
    return rows;
}

std::vector<TMF_ListRow> TMF_ListParts(const char *expression, uint32_t first)
{
    std::vector<TMF_ListRow> rows;
    uint32_t chain[TMF_CHAIN_SIZE];
    uint32_t offset = 0, count = 0, stride = 0;
    std::vector<uint32_t> offsets;
    const std::string path = expression;
    // The map says where the variable begins, the type map what lies in it: both must know it.
    const uint32_t address = inStruct(expression, aVarNode, nNodes);
    if (address == NO_ADDRESS || TMF_GetEfType(expression, chain, &offset) != 0)
        return rows;
    if (TMF_IsRecord(chain[0]) && TMF_MemberOffsets(chain[0], &offsets)) {
        const TMF_Decl *members = TMF_paDefStructCts[(chain[0] & TMF_VALUE) - 1].paMembers;
        for (size_t i = 0; i < offsets.size(); ++i)
            rows.push_back(MakePart(path + "." + members[i].name, members[i].name,
                                    address + offsets[i], members[i].chain));
    } else if (TMF_GetArrayInfo(chain, &count, &stride) == 0) {
        // A page at a time: an array of thousands would fill a list for seconds.
        for (uint32_t i = first; i < count && i - first < TMF_LIST_ELEMENTS_MAX; ++i) {
            const std::string index = "[" + std::to_string(i) + "]";
            rows.push_back(MakePart(path + index, index, address + i * stride, chain + 1));
        }
    }
    return rows;
}

int TMF_SuggestItem(const char *expression, char *type, int *size)
{
    uint32_t chain[TMF_CHAIN_SIZE];
    uint32_t offset = 0;
    if (TMF_GetEfType(expression, chain, &offset) != 0 || !ItemOfChain(chain, type, size))
        return -1;
    return 0;
}
