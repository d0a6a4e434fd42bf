// The node tables: adding, sorting, freeing and searching by name, by address and by
// wildcard. Expressions over them are in varexpr.cpp. A table is in the order of its names; one
// by addresses stands beside it, of numbers, and is forgotten whenever the table changes.
#include "symbols/varnode.h"
#include "symbols/listener.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <queue>
#include <set>
#include <utility>
#include <vector>

#include "text/tokens.h"

VarNode aVarNode[NODES_MAX];
int nNodes = 0;
int openStruct = OPEN_NONE;
VarNode aVarNode166[NODES_MAX];
int nNodes166 = 0;
int openStruct166 = 0;
VarNode aVarTMSNode[NODES_MAX];
int nTMSNodes = 0;
int openTMSStruct = 0;
std::string mapFile;
std::string TMS_mapFile;

namespace {

// What is known about a table: that it was sorted, and how it looked then. Code that
// fills a table by hand changes one of these and gets the plain scan.
struct SortedMark {
    const VarNode *table;
    int count;
    const char *first;
    const char *last;
};
SortedMark sortedMarks[3] = {{aVarNode, -1, nullptr, nullptr},
                             {aVarNode166, -1, nullptr, nullptr},
                             {aVarTMSNode, -1, nullptr, nullptr}};

SortedMark *MarkOf(const VarNode *table)
{
    for (SortedMark &mark : sortedMarks)
        if (mark.table == table)
            return &mark;
    return nullptr;
}

void SetMark(const VarNode *table, int count)
{
    SortedMark *mark = MarkOf(table);
    if (mark == nullptr)
        return;
    mark->count = count;
    mark->first = count > 0 ? table[0].name : nullptr;
    mark->last = count > 0 ? table[count - 1].name : nullptr;
}

// Cheap enough to be asked at every look-up, and wrong only for a table changed in its middle.
bool IsMarkedSorted(const VarNode *table, int count)
{
    const SortedMark *mark = MarkOf(table);
    return mark != nullptr && count > 0 && mark->count == count && mark->first == table[0].name &&
           mark->last == table[count - 1].name;
}

// Of equal names a selection sort makes an order that hangs on all its swaps, and the first of
// them is the one that is found. It is too slow for maps of thousands of names: these are sorted
// fast, and the swaps replayed on numbers instead of nodes. rank[i] is the name's place among
// the distinct names. Every distinct name keeps the positions of its nodes in a heap; an entry
// below the current position is stale: its node was swapped away from there.
std::vector<int> ReplaySwaps(const std::vector<int> &rank, const std::vector<int> &byName)
{
    typedef std::priority_queue<int, std::vector<int>, std::greater<int>> PositionHeap;
    const size_t n = rank.size();
    std::vector<PositionHeap> positions(n);
    std::vector<int> nodeAt(n);
    for (size_t i = 0; i < n; ++i) {
        nodeAt[i] = static_cast<int>(i);
        positions[static_cast<size_t>(rank[i])].push(static_cast<int>(i));
    }
    for (size_t i = 0; i < n; ++i) {
        const int wanted = rank[static_cast<size_t>(byName[i])];
        PositionHeap &heap = positions[static_cast<size_t>(wanted)];
        size_t smallest = static_cast<size_t>(heap.top());
        while (smallest < i) {
            heap.pop();
            smallest = static_cast<size_t>(heap.top());
        }
        heap.pop();
        if (smallest == i)
            continue;
        std::swap(nodeAt[i], nodeAt[smallest]);
        const int displaced = rank[static_cast<size_t>(nodeAt[smallest])];
        positions[static_cast<size_t>(displaced)].push(static_cast<int>(smallest));
    }
    return nodeAt;
}

// Node indexes in address order, equal addresses in table order.
struct AddressIndex {
    std::vector<int> order;
    int count = -1; // of the table when the index was built
};
AddressIndex mapIndex, registerIndex;

void BuildAddressIndex(AddressIndex *index, const VarNode *table, int count)
{
    index->count = count;
    index->order.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        index->order[static_cast<size_t>(i)] = i;
    std::stable_sort(index->order.begin(), index->order.end(),
                     [table](int a, int b) { return table[a].addr < table[b].addr; });
}

// The first node at or after the address, or null.
const VarNode *NodeAtOrAfter(AddressIndex *index, const VarNode *table, int count, uint32_t address)
{
    // Built at the first question: loading a map does not wait for it.
    if (index->count != count)
        BuildAddressIndex(index, table, count);
    auto found =
        std::lower_bound(index->order.begin(), index->order.end(), address,
                         [table](int node, uint32_t wanted) { return table[node].addr < wanted; });
    return found == index->order.end() ? nullptr : &table[*found];
}

const VarNode *NodeAtOrBelow(AddressIndex *index, const VarNode *table, int count, uint32_t address)
{
    if (index->count != count)
        BuildAddressIndex(index, table, count);
    auto behind =
        std::upper_bound(index->order.begin(), index->order.end(), address,
                         [table](uint32_t wanted, int node) { return wanted < table[node].addr; });
    if (behind == index->order.begin())
        return nullptr;
    // Of several names for one address the same as NodeAtOrAfter gives.
    return NodeAtOrAfter(index, table, count, table[*(behind - 1)].addr);
}

void ForgetAddressIndex(const VarNode *table)
{
    if (table == aVarNode)
        mapIndex.count = -1;
    if (table == aVarNode166)
        registerIndex.count = -1;
}

} // namespace

bool SYM_IsNameChar(char c)
{
    return TXT_IsNameChar(c) || c == '?';
}

int SYM_AddNode(VarNode *table, int *count, uint32_t address, const char *text, int *refused)
{
    size_t length = 0;
    // One more than allowed, to tell a name that is too long from one that just fits.
    while (length <= NODE_NAME_MAX && SYM_IsNameChar(text[length]))
        ++length;
    if (length == 0 || length > NODE_NAME_MAX)
        return -1;
    if (*count >= NODES_MAX) {
        if (refused != nullptr)
            ++*refused;
        return -1;
    }
    char *name = static_cast<char *>(std::malloc(length + 1));
    if (name == nullptr)
        return -1;
    std::memcpy(name, text, length);
    name[length] = '\0';
    table[*count].name = name;
    table[*count].addr = address;
    ++*count;
    SetMark(table, -1); // appended: the order of the names is gone
    ForgetAddressIndex(table);
    return 0;
}

// Doubles are of no account until the table is full: which of two nodes of a name comes first
// then hangs on all nodes as they stood in the map.
int SYM_ReplaceNodes(VarNode *table, int *count, const std::vector<SYM_Symbol> &symbols,
                     int *refused)
{
    FreeNodes(table, count);
    const bool isTight = symbols.size() > NODES_MAX;
    std::set<std::pair<std::string, uint32_t>> known;
    for (const SYM_Symbol &symbol : symbols)
        if (!isTight || known.insert({symbol.name, symbol.address}).second)
            SYM_AddNode(table, count, symbol.address, symbol.name.c_str(), refused);
    const int taken = *count; // doubles among them: they were in the map
    SYM_SortByName(table, *count);
    SYM_RemoveDuplicates(table, count);
    if (table == aVarNode)
        SortMapNdxByAddr();
    return taken;
}

int AddMapVar(uint32_t address, const char *text)
{
    return SYM_AddNode(aVarNode, &nNodes, address, text, nullptr);
}

int AddMapVarS(const char *mapLine, const char *text)
{
    return AddMapVar(static_cast<uint32_t>(std::strtoul(mapLine, nullptr, 16)), text);
}

void FreeNodes(VarNode *table, int *count)
{
    for (int i = 0; i < *count; ++i) {
        std::free(table[i].name);
        table[i].name = nullptr;
        table[i].addr = 0;
    }
    *count = 0;
    SetMark(table, -1);
    ForgetAddressIndex(table);
}

void SYM_SortByName(VarNode *table, int count)
{
    const size_t n = static_cast<size_t>(count > 0 ? count : 0);
    std::vector<int> order(n);
    for (size_t i = 0; i < n; ++i)
        order[i] = static_cast<int>(i);
    std::sort(order.begin(), order.end(), [table](int a, int b) {
        const int sign = std::strcmp(table[a].name, table[b].name);
        return sign != 0 ? sign < 0 : a < b;
    });
    std::vector<int> rank(n);
    int distinct = -1;
    for (size_t i = 0; i < n; ++i) {
        if (i == 0 || std::strcmp(table[order[i - 1]].name, table[order[i]].name) != 0)
            ++distinct;
        rank[static_cast<size_t>(order[i])] = distinct;
    }
    // Without equal names any sort gives the same order.
    if (static_cast<size_t>(distinct + 1) < n)
        order = ReplaySwaps(rank, order);
    std::vector<VarNode> sorted(n);
    for (size_t i = 0; i < n; ++i)
        sorted[i] = table[order[i]];
    std::copy(sorted.begin(), sorted.end(), table);
    SetMark(table, count);
    ForgetAddressIndex(table);
}

void SortMapByName()
{
    SYM_SortByName(aVarNode, nNodes);
}

void SYM_RemoveDuplicates(VarNode *table, int *count)
{
    const bool wasSorted = IsMarkedSorted(table, *count);
    int kept = 0;
    for (int i = 0; i < *count; ++i) {
        const bool same = kept > 0 && table[kept - 1].addr == table[i].addr &&
                          std::strcmp(table[kept - 1].name, table[i].name) == 0;
        // The last of equals stays.
        if (same)
            std::free(table[--kept].name);
        table[kept++] = table[i]; // the name changes hands
    }
    for (int i = kept; i < *count; ++i)
        table[i] = VarNode(); // their names belong to kept nodes now, or are freed
    *count = kept;
    SetMark(table, wasSorted ? kept : -1);
    ForgetAddressIndex(table);
}

// The mailbox of a TMS320 counts words where maps of this program count bytes.
void SYM_BytesToWords(VarNode *table, int count)
{
    for (int i = 0; i < count; ++i)
        table[i].addr /= 2;
    ForgetAddressIndex(table);
}

void SortMapNdxByAddr()
{
    BuildAddressIndex(&mapIndex, aVarNode, nNodes);
    BuildAddressIndex(&registerIndex, aVarNode166, nNodes166);
}

int SYM_FindName(const VarNode *table, int count, const char *name)
{
    if (IsMarkedSorted(table, count)) {
        const VarNode *end = table + count;
        const VarNode *found =
            std::lower_bound(table, end, name, [](const VarNode &node, const char *text) {
                return std::strcmp(node.name, text) < 0;
            });
        return found != end && std::strcmp(found->name, name) == 0 ? static_cast<int>(found - table)
                                                                   : -1;
    }
    // Filled by hand, or not sorted yet.
    for (int i = 0; i < count; ++i)
        if (std::strcmp(table[i].name, name) == 0)
            return i;
    return -1;
}

const VarNode *SYM_MapNodeAtOrAfter(uint32_t address)
{
    return NodeAtOrAfter(&mapIndex, aVarNode, nNodes, address);
}

const VarNode *SYM_RegisterAtOrAfter(uint32_t address)
{
    return NodeAtOrAfter(&registerIndex, aVarNode166, nNodes166, address);
}

const VarNode *SYM_MapNodeAtOrBelow(uint32_t address)
{
    return NodeAtOrBelow(&mapIndex, aVarNode, nNodes, address);
}

const VarNode *SYM_RegisterAtOrBelow(uint32_t address)
{
    return NodeAtOrBelow(&registerIndex, aVarNode166, nNodes166, address);
}

void SYM_WarnRefused(int refused, int longNames)
{
    std::string text;
    if (refused > 0)
        text = "The map has " + std::to_string(refused) +
               " symbols more than the table can hold (" + std::to_string(NODES_MAX) +
               "). They were left out.";
    if (longNames > 0)
        text += std::string(text.empty() ? "" : "\n") +
                "Left out because their names have more than " + std::to_string(NODE_NAME_MAX) +
                " characters: " + std::to_string(longNames) +
                (longNames == 1 ? " symbol." : " symbols.");
    if (!text.empty())
        SYM_Warn("Map file", text);
}

bool SYM_IsWildcardMatch(const char *wildcard, const char *name)
{
    while (*wildcard != '*') {
        if (*wildcard != *name)
            return false;
        if (*wildcard == '\0')
            return true;
        ++wildcard;
        ++name;
    }
    return true;
}

int RdTblVarName(const char *wildcard, const char **name, const VarNode *table, int count,
                 int *position)
{
    if (*position < 0) // the end was told before
        return -1;
    for (int i = *position; i < count; ++i) {
        if (!SYM_IsWildcardMatch(wildcard, table[i].name))
            continue;
        *name = table[i].name;
        *position = i + 1;
        return 0;
    }
    *position = -1;
    return -1;
}
