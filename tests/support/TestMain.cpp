#include <gtest/gtest.h>

#include "platform/linux/PlatformServices.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qrx::platform::installPlatformServices();
    return RUN_ALL_TESTS();
}
