// A show on a display of its own.
#pragma once

#include "integration/saver_process.h"

#include <gtest/gtest.h>

class ShowFixture : public testing::Test {
protected:
    ShowFixture(int width, int height) : display(width, height) {}
    void SetUp() override { ASSERT_TRUE(display.Ok()); }

    void Start() {
        saver.Start(&display, {"/s"});
        ASSERT_TRUE(saver.WaitUntilShown(display));
    }

    VirtualDisplay display;
    SaverProcess saver;
};
