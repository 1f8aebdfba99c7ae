#include "host/configuration.h"

char orinPath[520] = "";
const char* const scrRegName = "Software\\OrinLab\\Screensavers\\Tamblor";
FXStr configProblem;
FXStr configSearch;
