// Any text as a data file: it is read and compared with itself without harm, and the page made
// of it holds none of its markup; as a template it is filled or refused.
#include "platform/plain_file.h"
#include "scratch_folder.h"
#include "sets/listing.h"
#include "settings/settings.h"

namespace {

// "x" as long as the template's own text holds no "<" but in front of these.
bool IsCleanPage(const std::string &page)
{
    for (size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1))
        if (page.compare(at, 4, "<td>") != 0)
            return false;
    return page.find('"') == std::string::npos && page.find('\x01') == std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    const std::string folder = FUZ_Folder() + "/";
    FUZ_WriteFile("d", text);
    FUZ_WriteFile("t", "{{device}}{{map}}<!-- group --><td>{{group}}<!-- heading -->{{heading}}"
                       "<!-- /heading --><!-- row --><td>{{name}}{{value}}{{raw}}{{unit}}{{text}}"
                       "{{limits}}{{default}}{{mark}}{{type}}<!-- /row --><!-- /group -->");
    std::vector<PST_File> files(2);
    PST_Problems problems;
    const int result = PST_ReadData(folder + "d", &files[0], &problems);
    FUZ_Check((result == 0) == (problems.count == 0));
    if (result == 0) {
        files[1] = files[0];
        for (const PST_Row &row : PST_CompareFiles(files))
            FUZ_Check(!row.differs && row.records[0] != nullptr && !row.name.empty());
        FUZ_Check(PST_WriteListing(folder + "t", files, LANGUAGE_EN, folder + "o", &problems) == 0);
        std::string page;
        FUZ_Check(PLT_ReadFile(folder + "o", PLT_FILE_SIZE_MAX, &page) == PLT_FILE_OK &&
                  IsCleanPage(page));
    }
    PST_Problems refused;
    files[0].records.resize(files[0].records.size() > 3 ? 3 : files[0].records.size());
    files[1] = files[0];
    FUZ_Check((PST_WriteListing(folder + "d", files, LANGUAGE_RU, folder + "o", &refused) == 0) ==
              (refused.count == 0));
    return 0;
}
