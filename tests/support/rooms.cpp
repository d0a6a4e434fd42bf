// The rooms tied together before the first test, as the program's start-up does it.
#include <gtest/gtest.h>

#include "app/rooms.h"

namespace {

class Rooms : public testing::Environment {
public:
    void SetUp() override
    {
        VR_ConnectRooms();
    }
};

[[maybe_unused]] const testing::Environment *const rooms =
    testing::AddGlobalTestEnvironment(new Rooms);

} // namespace
