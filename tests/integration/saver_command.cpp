#include "integration/saver_process.h"

const int kReadsBeforeFrames = -1;

std::vector<std::string> SaverCommand(const TempFolder&, Environment*) {
    return {TAMBLOR_EXE};
}

std::string SaverName(const std::string& file) {
    return file;
}
