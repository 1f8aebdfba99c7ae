#include "host/configuration.h"

#include "win32/product.h"

char orinPath[520] = "";
const char* const scrRegName = kSaverKey;
FXStr configProblem;
FXStr configSearch;
