// The desktop program.
#include "app/startup.h"
#include "platform/system.h"

int main(int argc, char **argv)
{
    PLT_GuardStandardStreams();
    return VR_Main(argc, argv);
}
