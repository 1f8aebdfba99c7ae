#include "render/environment.h"

PEnv* fxglobalEnv = nullptr;

void fxSetEnv(PEnv* env) {
    fxglobalEnv = env;
}
