#include "package/file_block.h"

#include "base/file_handle.h"

bool FXFileBlock::Load(const char* path) {
    const FXFile file = fxOpenFile(path, "rb");
    int size = 0;
    bytes_ = file ? fxReadRest(file.get(), &size) : nullptr;
    data.InitData(bytes_.get(), size);
    return static_cast<bool>(bytes_);
}

FXFileRest::FXFileRest(std::FILE* file) : file_(file), at_(std::ftell(file)) {
    int size = 0;
    bytes_ = fxReadRest(file, &size);
    data.InitData(bytes_.get(), size);
}

FXFileRest::~FXFileRest() {
    std::fseek(file_, at_ + (data.size - data.left), SEEK_SET);
}
