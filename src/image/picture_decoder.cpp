#include "image/picture_decoder.h"

#include "image/codec.h"
#include "package/package.h"

namespace {

constexpr double kNoLimit = 100000; // seconds

FXPictureDecoder* active = nullptr;

// Nothing of an earlier picture, and settings as a new canvas has them: a picture decoded elsewhere can be
// put there.
bool localIsNew(const FXCanvas& canvas) {
    const float* back = canvas.backColor;
    return canvas.pixels == nullptr && canvas.powerOfTwo && canvas.clearOnLoad && !canvas.alphaFromRed &&
           back[0] == 0 && back[1] == 0 && back[2] == 0 && back[3] == 0;
}

std::int64_t localPixels(const FXCanvas& canvas) {
    return std::int64_t{canvas.width} * canvas.height;
}

} // namespace

FXPictureDecoder* FXPictureDecoder::Active() {
    return active;
}

void FXPictureDecoder::Start(FXPackage* pck, const FXArray<int>& entries) {
    Stop();
    if (!fxDevilLoaded() || active != nullptr)
        return;
    for (const int entry : entries) {
        const FXPackageData* data = pck->GetDataPtr(entry);
        const int type = pck->GetDataType(entry);
        if (data == nullptr || type == kRaw)
            continue;
        if (Picture* picture = pictures_.PushNew())
            picture->file = {data->start, data->size, type};
    }
    mutex_ = fxCreateMutex();
    work_ = fxCreateSignal();
    done_ = fxCreateSignal();
    if (mutex_ != nullptr && work_ != nullptr && done_ != nullptr)
        thread_ = fxCreateThread([](void* decoder) { static_cast<FXPictureDecoder*>(decoder)->Run(); }, this);
    if (thread_ != nullptr)
        active = this;
    else
        Stop();
}

void FXPictureDecoder::Stop() {
    if (thread_ != nullptr) {
        {
            const FXLocked locked(mutex_);
            stopping_ = true;
        }
        fxRaiseSignal(work_);
        fxWaitThread(thread_, kNoLimit);
        active = nullptr;
    }
    fxDestroyThread(thread_);
    fxDestroySignal(work_);
    fxDestroySignal(done_);
    fxDestroyMutex(mutex_);
    thread_ = nullptr;
    work_ = done_ = nullptr;
    mutex_ = nullptr;
    pictures_.DestroyBuf();
    wanted_ = nullptr;
    waiting_ = 0;
    stopping_ = false;
}

void FXPictureDecoder::Run() {
    for (bool stopped = false; !stopped;) {
        Picture* picture = Next(&stopped);
        if (picture == nullptr) {
            if (!stopped)
                fxAwaitSignal(work_);
            continue;
        }
        picture->isLoaded = picture->canvas->Decode(picture->file);
        {
            const FXLocked locked(mutex_);
            picture->state = State::Done;
            waiting_ += localPixels(picture->own);
        }
        fxRaiseSignal(done_);
    }
}

// What to decode now; null when there is nothing yet.
FXPictureDecoder::Picture* FXPictureDecoder::Next(bool* stopped) {
    const FXLocked locked(mutex_);
    *stopped = stopping_;
    Picture* next = nullptr;
    if (wanted_ != nullptr && wanted_->state == State::Waiting)
        next = wanted_;
    else if (!stopping_ && waiting_ < kMostWaiting)
        for (int i = 0; i < pictures_.count && next == nullptr; ++i)
            if (pictures_[i]->state == State::Waiting)
                next = pictures_[i];
    if (next != nullptr)
        next->state = State::Decoding;
    return next;
}

FXPictureDecoder::Picture* FXPictureDecoder::Find(const FXCanvas& canvas, const FXPictureFile& file) const {
    if (localIsNew(canvas))
        for (Picture* picture : pictures_)
            if (picture->file.start == file.start && picture->file.type == file.type)
                return picture;
    return nullptr;
}

void FXPictureDecoder::AwaitDone(Picture* picture) {
    for (;;) {
        {
            const FXLocked locked(mutex_);
            const bool isDone = picture->state == State::Done;
            wanted_ = isDone ? nullptr : picture;
            if (isDone)
                return;
        }
        fxRaiseSignal(work_);
        fxAwaitSignal(done_);
    }
}

bool FXPictureDecoder::Load(FXCanvas* canvas, const FXPictureFile& file) {
    Picture asked;
    asked.file = file;
    asked.canvas = canvas;
    Picture* ahead = Find(*canvas, file);
    AwaitDone(ahead != nullptr ? ahead : &asked);
    if (ahead == nullptr)
        return asked.isLoaded;
    const bool isLoaded = ahead->isLoaded;
    {
        const FXLocked locked(mutex_);
        waiting_ -= localPixels(ahead->own);
        if (ahead->own.pixels != nullptr) {
            canvas->MoveFrom(&ahead->own);
            canvas->opaque = ahead->own.opaque;
        }
        delete pictures_.Release(pictures_.Findpos(ahead));
    }
    fxRaiseSignal(work_); // there is room for another one
    return isLoaded;
}
