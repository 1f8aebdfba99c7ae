// Decodes the pictures of a package on a thread of its own, ahead of the thread that needs them.
#pragma once

#include "base/owner_array.h"
#include "image/canvas.h"
#include "platform/threads.h"

#include <cstdint>

class FXPackage;

// Between Start and Stop its thread is the only one that calls the codec: canvases take the pictures of
// packages from here, or have them decoded here; pictures that are files of their own are not for that time.
// Start, Stop and all loading belong on one thread, and the package stays as it is meanwhile. There is one
// decoder at a time.
class FXPictureDecoder {
public:
    // How many pixels wait to be taken before the thread pauses; one picture more may.
    static constexpr std::int64_t kMostWaiting = std::int64_t{1} << 22;

    FXPictureDecoder() = default;
    ~FXPictureDecoder() { Stop(); }
    FXPictureDecoder(const FXPictureDecoder&) = delete;
    FXPictureDecoder& operator=(const FXPictureDecoder&) = delete;

    // Begins with these entries, in their order; entries that are no pictures are passed over. Nothing is
    // decoded ahead when there is no codec, no memory or no thread.
    void Start(FXPackage* pck, const FXArray<int>& entries);
    // Waits for the thread to end. What nobody took is dropped.
    void Stop();

    // The one between Start and Stop, or null.
    static FXPictureDecoder* Active();
    // What canvas->Decode(file) does, with the same result, on the decoder's thread.
    bool Load(FXCanvas* canvas, const FXPictureFile& file);

private:
    enum class State { Waiting, Decoding, Done };
    struct Picture {
        FXPictureFile file = {};
        FXCanvas own;
        FXCanvas* canvas = &own; // which it is decoded into
        bool isLoaded = false;
        State state = State::Waiting;
    };

    void Run();
    Picture* Next(bool* stopped);
    Picture* Find(const FXCanvas& canvas, const FXPictureFile& file) const;
    void AwaitDone(Picture* picture);

    // Under the mutex from Start on: the pictures' states, and what follows.
    FXOwnerArray<Picture> pictures_;
    Picture* wanted_ = nullptr; // first, whatever the order
    std::int64_t waiting_ = 0;  // pixels that are decoded and not taken
    bool stopping_ = false;

    FXMutex* mutex_ = nullptr;
    FXSignal* work_ = nullptr; // something changed for the thread
    FXSignal* done_ = nullptr; // the thread has decoded a picture
    FXThread* thread_ = nullptr;
};
