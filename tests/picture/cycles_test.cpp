// The show goes round for days.
#include "picture/own_heap.h"
#include "picture/test_show.h"

#include <gtest/gtest.h>

#include <malloc.h>

namespace {

constexpr double kStep = 0.2;               // seconds
constexpr std::size_t kDriverMay = 1 << 20; // keep of its buffers, in bytes

// Plays to the next first frame of the desktop; false when it does not come.
bool PlayCycle(ShowDriver* driver, double* now) {
    const double limit = *now + 120;
    for (int before = driver->Stage(); *now < limit; before = driver->Stage()) {
        *now += kStep;
        driver->RunTo(*now);
        if (before != 0 && driver->Stage() == 0)
            return true;
    }
    return false;
}

} // namespace

TEST(Cycles, LeaveTheHeapAsItWas) {
    ShowDriver driver;
    ShowDriver::Settings settings = TestShow();
    settings.step = kStep;
    std::string error;
    ASSERT_TRUE(driver.Open(settings, &error)) << error;
    double now = 0;
    std::ptrdiff_t own[3] = {};
    std::size_t process[3] = {}; // bytes in use
    for (int cycle = 0; cycle < 3; ++cycle) {
        ASSERT_TRUE(PlayCycle(&driver, &now)) << cycle;
        own[cycle] = OwnHeapInUse();
        const struct mallinfo2 heap = mallinfo2();
        process[cycle] = heap.uordblks + heap.hblkhd;
    }
    EXPECT_GT(own[0], 1 << 20) << "our blocks are not counted";
    EXPECT_EQ(own[2], own[0]);
    // Nothing, and passes, under a sanitizer with a heap of its own.
    EXPECT_LE(process[2], process[0] + kDriverMay);
}
