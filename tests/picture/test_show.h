// The show as the picture tests play it: small, over a desktop on which every corner is different.
#pragma once

#include "film/show_driver.h"

ShowDriver::Settings TestShow();
