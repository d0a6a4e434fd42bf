// The desktop tests' program: Qt's offscreen platform unless another one is asked for.
#include <QByteArray>
#include <cstdlib>

#include <gtest/gtest.h>

#include "app/rooms.h"
#include "runtime/qt/qt_view.h"

// The font library keeps a little memory for itself at exit; not ours to free.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libfontconfig";
}

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (!std::getenv("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (QTV_StartApplication(&argc, argv) < 0)
        return 1;
    VR_ConnectRooms();
    return RUN_ALL_TESTS();
}
