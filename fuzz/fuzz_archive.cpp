// The archive reader on any file: by name and member after member.
#include "calendar/archive.h"
#include "text/txfrw.h"

#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    static const int file = memfd_create("archive", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    if (file < 0 || ftruncate(file, 0) != 0 ||
        pwrite(file, data, size, 0) != static_cast<ssize_t>(size))
        std::abort();
    std::string content, name;
    if (QAR_Extract_file(&content, path.c_str(), "prjinfo.tmf") == 0 && content.size() > size)
        std::abort();
    TXFRW_Close(QAR_Extract_txfrw(path.c_str(), "prjinfo.map28x"));
    std::FILE *archive = std::fopen(path.c_str(), "rb");
    for (int left = 1; archive != nullptr && left > 0;) {
        left = QAR_Extract(&content, &name, archive);
        if (left < -2 || content.size() > size)
            std::abort();
    }
    std::fclose(archive);
    return 0;
}
