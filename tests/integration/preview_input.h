// What every preview does with input, whichever system shows it.
#pragma once

#include "integration/saver_process.h"

// The pointer passes over the preview and clicks, long after all times of grace; it must go on, with nothing
// written.
inline void ExpectInputIsIgnored(SaverProcess& saver, VirtualDisplay& display) {
    EXPECT_FALSE(display.CursorIsHidden());
    EXPECT_EQ(saver.Trace(), "") << "the preview writes no trace";
    saver.SetClock(SaverProcess::kStartMs + 60000);
    display.MovePointer(150, 120);
    display.ClickButton(1);
    usleep(300000); // time for a wrong close to happen
    EXPECT_TRUE(saver.Running()) << "no input ends the preview";
}
