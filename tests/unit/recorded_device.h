// The OpenGL device on the recorder, as the process's environment. Declare it before what uses it.
#pragma once

#include "fakes/gl_recorder.h"
#include "render/gl_device.h"

template <class Device = FXGL> class RecordedDevice {
public:
    RecordedDevice() {
        GLRecorder::Reset();
        gl.CreateChild(reinterpret_cast<HWND>(UINT_PTR{0x700}));
        fxSetEnv(&gl);
        GLRecorder::Take(); // a test's list starts with what it does itself
    }
    ~RecordedDevice() { fxSetEnv(nullptr); }
    RecordedDevice(const RecordedDevice&) = delete;
    RecordedDevice& operator=(const RecordedDevice&) = delete;

    Device gl;
};
