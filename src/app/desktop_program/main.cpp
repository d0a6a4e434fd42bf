// The desktop program.
#include "app/VR.h"

int main(int argc, char **argv)
{
    return VR_Main(argc, argv);
}
