// The windows on the generated desktop.
#pragma once

#include "pictures/drawing.h"

void DrawTerminalWindow(const Drawing& desktop, const Box& frame);
void DrawEditorWindow(const Drawing& desktop, const Box& frame);
