// When the saver may close.
#pragma once

// The answer to a request to close the window (WM_CLOSE). A preview, and a saver that saw a key, close at
// once. Else the scene must have been built (`started`, at `startTime`) and more than 4 seconds have passed:
// the user may still be moving the mouse after starting the saver. Times in seconds; one that is not a number
// does not close.
bool SaverMayClose(bool preview, bool escapeHit, bool started, double now, double startTime);
