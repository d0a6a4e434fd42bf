// Names and contents as a user may give them to --make-archive: what is accepted comes back
// by its name, byte by byte. The input is cut at zero bytes: name, content, name, content...
#include "calendar/archive.h"
#include "scratch_folder.h"

#include <map>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    static const std::filesystem::path home = std::filesystem::current_path();
    std::filesystem::current_path(FUZ_Folder());
    std::vector<std::string> names;
    std::map<std::string, std::string> contents;
    for (size_t at = 0; at < size && names.size() < 8;) {
        const size_t nameEnd = std::min(input.find('\0', at), size);
        const size_t end = nameEnd < size ? std::min(input.find('\0', nameEnd + 1), size) : size;
        const std::string name = input.substr(at, nameEnd - at);
        names.push_back(name);
        const bool isPlain = !name.empty() && name.size() < 200 &&
                             name.find('/') == std::string::npos && name != "." && name != ".." &&
                             name != "out.qar";
        if (isPlain && contents.count(name) == 0) {
            contents[name] = nameEnd < size ? input.substr(nameEnd + 1, end - nameEnd - 1) : "";
            FUZ_WriteFile(name, contents[name]);
        }
        at = end + 1;
    }
    std::string message;
    if (!names.empty() && QAR_CheckMembers(names, &message) == 0) {
        FUZ_Check(QAR_Make("out.qar", names) == 0);
        for (const std::string &name : names) {
            std::string content;
            FUZ_Check(QAR_Extract_file(&content, "out.qar", name.c_str()) == 0);
            FUZ_Check(content == contents[name]);
        }
        std::filesystem::remove("out.qar");
    } else {
        FUZ_Check(names.empty() || !message.empty());
    }
    for (const auto &member : contents)
        std::filesystem::remove(member.first);
    std::filesystem::current_path(home);
    return 0;
}
