// The show as the picture tests play it: small, over a desktop on which every corner is different.
#pragma once

#include "film/show_driver.h"

constexpr double kTestStep = 0.1; // seconds from frame to frame

ShowDriver::Settings TestShow();
