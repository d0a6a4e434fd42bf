// Files need not agree in anything but the names: each may be of another header, another order,
// another hand. So texts are compared only where nothing better can be said.
#include "sets/compare.h"

#include "sets/value.h"

#include <algorithm>
#include <unordered_map>

namespace {

// Bytes are written as people like, with blanks and small letters.
std::string PlainBytes(const std::string &text)
{
    std::string plain;
    for (const char c : text)
        if (c != ' ')
            plain += c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
    return plain;
}

} // namespace

bool PST_GetNumber(const PST_Record &record, double *number)
{
    if (!PST_ParseNumber(record.value, number))
        return false;
    // 0.1 as a double is another number than the float that the target holds.
    if (record.cast == "(float)")
        *number = static_cast<double>(static_cast<float>(*number));
    return true;
}

bool PST_IsSameRecord(const PST_Record *a, const PST_Record *b)
{
    if (a == nullptr || b == nullptr)
        return a == b;
    double first = 0, second = 0;
    if (a->cast == b->cast && a->value == b->value)
        return true;
    // An edited file may have lost its casts: without one the numbers decide.
    if (a->cast != b->cast && !a->cast.empty() && !b->cast.empty())
        return false;
    if (PST_GetNumber(*a, &first) && PST_GetNumber(*b, &second))
        return first == second;
    return PlainBytes(a->value) == PlainBytes(b->value);
}

std::vector<PST_Row> PST_CompareFiles(const std::vector<PST_File> &files)
{
    std::unordered_map<std::string, size_t> byGroup, byName;
    std::vector<PST_Row> found;
    for (size_t file = 0; file < files.size(); ++file) {
        for (const PST_Record &record : files[file].records) {
            const auto at = byName.emplace(record.name, found.size());
            if (at.second) {
                found.push_back({record.group, record.heading, record.name, {}, false});
                found.back().records.resize(files.size(), nullptr);
                byGroup.emplace(record.group, byGroup.size());
            }
            found[at.first->second].records[file] = &record;
        }
    }
    // Against the first file, also where that has no such value.
    for (PST_Row &row : found)
        row.differs =
            std::any_of(row.records.begin(), row.records.end(), [&row](const auto *other) {
                return !PST_IsSameRecord(row.records[0], other);
            });
    // Stable: within a group the files' own order stays.
    std::stable_sort(found.begin(), found.end(), [&byGroup](const PST_Row &a, const PST_Row &b) {
        return byGroup[a.group] < byGroup[b.group];
    });
    return found;
}
