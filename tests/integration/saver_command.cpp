#include "integration/saver_command.h"

std::vector<std::string> SaverCommand(const TempFolder&, Environment*) {
    return {TAMBLOR_EXE};
}

std::string SaverName(const std::string& file) {
    return file;
}

bool SaverDraws(std::uint32_t) {
    return true;
}
