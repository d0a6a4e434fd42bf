// Type codes: what is valid, how large it is and how it is aligned. A map comes from a file or a
// target and may say anything: depth, sizes and counts are bounded, and what does not resolve has
// no size.
#include "symbols/typemap.h"

#include <algorithm>
#include <vector>

#include "settings/settings.h"

namespace {

// All bits that no basic type has, derivations among them.
constexpr uint32_t BASIC_FORBIDDEN = 0xFFFFF818u;
constexpr uint32_t SIGN_BITS = TMF_SIGNED | TMF_UNSIGNED;
constexpr uint32_t SIZE_BITS = TMF_SIZE1 | TMF_SIZE2 | TMF_SIZE4 | TMF_SIZE8;
constexpr uint32_t KIND_MASK = 0xF8000000u; // top five bits
// Far above any target's memory; keeps sums and products in range.
constexpr int64_t SIZE_LIMIT = INT32_MAX;

// A resolved chain. `height`: levels of arrays and structures below it.
struct Layout {
    uint32_t kind = 0;
    int64_t size = 0;
    int64_t count = 0;
    int32_t alignment = 0;
    int height = 0;
};

// Structures resolve once: a map may nest them so that resolving each anew every time
// they appear would never end. Only successes are kept.
struct StructCache {
    const TMF_Struct *table = nullptr;
    int32_t count = 0;
    int32_t processor = -1;
    std::vector<Layout> layouts; // kind 0 = not resolved yet
};
StructCache cache;

bool IsOneBit(uint32_t bits)
{
    return bits != 0 && (bits & (bits - 1)) == 0;
}

bool Resolve(const uint32_t *chain, int depth, Layout *layout);

bool ResolveArray(const uint32_t *chain, int depth, Layout *layout)
{
    if (!Resolve(chain + 1, depth + 1, layout) || layout->count < 1)
        return false;
    // An array of one element looks like the element.
    if (layout->count > 1)
        layout->kind |= TMF_ARRAY;
    layout->size *= layout->count;
    layout->count = chain[0] & TMF_VALUE;
    layout->height += 1;
    return layout->size * layout->count <= SIZE_LIMIT;
}

bool ResolveMembers(uint32_t code, int depth, Layout *layout)
{
    const TMF_Struct &record = TMF_paDefStructCts[(code & TMF_VALUE) - 1];
    const bool isUnion = (code & TMF_DERIVATION) == TMF_UNION;
    *layout = Layout();
    for (int i = 0; i < record.members; ++i) {
        Layout member;
        if (!Resolve(record.paMembers[i].chain, depth + 1, &member) || member.size < 1 ||
            member.count < 1)
            return false;
        const int64_t bytes = member.size * member.count;
        // Members of a union begin together: the largest makes its size.
        if (isUnion) {
            layout->size = std::max(layout->size, bytes);
            layout->alignment = std::max(layout->alignment, member.alignment);
        } else {
            layout->size = TMF_PlaceMember(layout->size, member.alignment) + bytes;
        }
        if (layout->size > SIZE_LIMIT)
            return false;
        layout->height = std::max(layout->height, member.height + 1);
    }
    // An empty structure has no place, so nothing can lie behind it.
    if (layout->size < 1)
        return false;
    if (!isUnion) {
        layout->alignment = TMF_AlignmentRule(static_cast<int>(layout->size));
        layout->size = TMF_PlaceMember(layout->size, layout->alignment);
    }
    layout->kind = TMF_STRUCT;
    layout->count = 1;
    return layout->size <= SIZE_LIMIT;
}

// A record has two slots in the cache: it may be named as a structure and as a union.
bool ResolveStruct(uint32_t code, int depth, Layout *layout)
{
    const uint32_t number = code & TMF_VALUE;
    if (!TMF_IsTTypeOk(code))
        return false;
    if (cache.table != TMF_paDefStructCts || cache.count != TMF_cnDefStructCts ||
        cache.processor != Procesor)
        TMF_ForgetLayouts();
    const size_t slot = 2 * (number - 1) + ((code & TMF_DERIVATION) == TMF_UNION ? 1u : 0u);
    if (cache.layouts[slot].kind != 0) {
        *layout = cache.layouts[slot];
        return depth + layout->height <= TMF_DEPTH_MAX;
    }
    if (!ResolveMembers(code, depth, layout))
        return false;
    cache.layouts[slot] = *layout;
    return true;
}

bool Resolve(const uint32_t *chain, int depth, Layout *layout)
{
    if (chain == nullptr || chain[0] == 0 || depth > TMF_DEPTH_MAX || (chain[0] & TMF_INVALID))
        return false;
    *layout = Layout();
    switch (chain[0] & TMF_DERIVATION) {
    case 0:
        if (!TMF_IsElemTypeOk(chain[0]))
            return false;
        layout->kind = chain[0];
        layout->size = TMF_GetElemSize(chain[0]);
        break;
    case TMF_POINTER: // whatever it points to is not resolved: it may be the structure around it
        layout->kind = chain[0] & KIND_MASK;
        layout->size = TMF_GetPtrSize(Procesor, (chain[1] & TMF_DERIVATION) == TMF_FUNCTION);
        break;
    case TMF_ARRAY:
        return ResolveArray(chain, depth, layout);
    case TMF_UNION:
    case TMF_STRUCT:
        return ResolveStruct(chain[0], depth, layout);
    default:
        return false; // a function has no size
    }
    layout->count = 1;
    layout->alignment = TMF_AlignmentRule(static_cast<int>(layout->size));
    return true;
}

} // namespace

void TMF_ForgetLayouts()
{
    cache.table = TMF_paDefStructCts;
    cache.count = TMF_cnDefStructCts;
    cache.processor = Procesor;
    cache.layouts.assign(2 * static_cast<size_t>(TMF_cnDefStructCts), Layout());
}

int64_t TMF_PlaceMember(int64_t offset, int32_t alignment)
{
    return offset + offset % alignment;
}

bool TMF_IsElemTypeOk(uint32_t code)
{
    if ((code & BASIC_FORBIDDEN) != 0)
        return false;
    const uint32_t sign = code & SIGN_BITS;
    const uint32_t size = code & SIZE_BITS;
    switch (code & TMF_KIND) {
    case TMF_VOID:
        return sign == 0 && size == 0;
    case TMF_INTEGER:
        return IsOneBit(sign) && IsOneBit(size);
    case TMF_FLOAT:
        return sign == 0 && IsOneBit(size);
    default:
        return false;
    }
}

int TMF_GetElemSize(uint32_t code)
{
    switch (code & SIZE_BITS) {
    case TMF_SIZE1:
        return 1;
    case TMF_SIZE2:
        return 2;
    case TMF_SIZE4:
        return 4;
    case TMF_SIZE8:
        return 8;
    default:
        return 0;
    }
}

bool TMF_IsTTypeOk(uint32_t code)
{
    if ((code & TMF_INVALID) != 0)
        return false;
    const uint32_t number = code & TMF_VALUE;
    switch (code & TMF_DERIVATION) {
    case 0:
        return TMF_IsElemTypeOk(code);
    case TMF_FUNCTION:
    case TMF_ARRAY:
    case TMF_POINTER:
        return true;
    case TMF_UNION:
    case TMF_STRUCT:
        return TMF_paDefStructCts != nullptr && number >= 1 &&
               number <= static_cast<uint32_t>(TMF_cnDefStructCts);
    default:
        return false;
    }
}

// What the targets' compilers do: the C166 aligns to 2 bytes at most, the TMS320 to 4.
int TMF_AlignmentRule(int size)
{
    if (IsWordAddressing(Procesor))
        return size < 4 ? 2 : 4;
    return size < 2 ? 1 : 2;
}

int TMF_GetPtrSize(int processor, bool)
{
    // Near pointers; the processors numbered below 3 are of that family.
    const bool isC166Family = processor >= 0 && processor <= 2;
    return isC166Family ? 2 : 4;
}

int TMF_GetTypeInfo(const uint32_t *chain, uint32_t *kind, int32_t *elementSize, int32_t *count,
                    int32_t *alignment, int depth)
{
    *kind = 0;
    *elementSize = 0;
    *count = 0;
    // What callers find when the chain does not resolve: the least of the processor.
    *alignment = IsWordAddressing(Procesor) ? 2 : 1;
    Layout layout;
    if (!Resolve(chain, depth, &layout))
        return -1;
    *kind = layout.kind;
    *elementSize = static_cast<int32_t>(layout.size);
    *count = static_cast<int32_t>(layout.count);
    *alignment = layout.alignment;
    return 0;
}
