// A show on a display of its own.
#pragma once

#include "integration/saver_process.h"

#include <X11/keysym.h>

class ShowFixture : public testing::Test {
protected:
    ShowFixture(int width, int height, const char* lacks = nullptr) : display(width, height, lacks) {}
    void SetUp() override { ASSERT_TRUE(display.Ok()); }

    void Start() {
        saver.Start(&display, {"/s"});
        ASSERT_TRUE(saver.WaitUntilShown(display));
    }
    void ExpectAKeyEndsIt(unsigned long key = XK_space) {
        display.PressKey(key);
        EXPECT_EQ(saver.WaitForExit(), 0) << saver.Errors();
    }
    // Time for a wrong close to happen: too little of it misses a fault, and never fails.
    void ExpectItGoesOn() {
        usleep(300000);
        EXPECT_TRUE(saver.Running());
    }

    VirtualDisplay display;
    SaverProcess saver;
};
