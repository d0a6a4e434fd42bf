// The desktop program.
#include "app/startup.h"
#include "platform/system.h"
#include "runtime/view.h"

int main(int argc, char **argv)
{
    PLT_GuardStandardStreams();
    return VIEW_Main(argc, argv, VR_Main);
}
