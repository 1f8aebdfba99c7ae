#include "anim/bezier_graph.h"

#include "package/record.h"

void FXBezierGraph::Destroy() {
    resolution = 0;
    valueScale = 1000;
    positions.DestroyBuf();
    values.DestroyBuf();
    flags[0] = flags[1] = false;
    tension = 0.3f;
    samplesPerSegment = 16;
}

void FXBezierGraph::LoadC(FXPackageData* d) {
    fxLoadRecord(*this, d);
}

bool FXBezierGraph::Save(std::FILE* file) const {
    return fxSaveRecord(*this, file);
}
