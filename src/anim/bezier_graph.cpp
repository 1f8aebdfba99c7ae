#include "anim/bezier_graph.h"

#include "package/package_data.h"

#include <cstdint>

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
    resolution = d->ReadInt();
    valueScale = d->ReadInt();
    d->ReadArray(&positions);
    d->ReadArray(&values);
    for (bool& flag : flags)
        flag = d->ReadBool();
    tension = d->ReadFloat();
    samplesPerSegment = d->ReadInt();
}

bool FXBezierGraph::Save(std::FILE* file) const {
    const std::int32_t head[2] = {resolution, valueScale};
    const unsigned char bytes[2] = {flags[0], flags[1]};
    const std::int32_t samples = samplesPerSegment;
    return std::fwrite(head, sizeof head, 1, file) == 1 && positions.Save(file) && values.Save(file) &&
           std::fwrite(bytes, sizeof bytes, 1, file) == 1 &&
           std::fwrite(&tension, sizeof tension, 1, file) == 1 &&
           std::fwrite(&samples, sizeof samples, 1, file) == 1;
}
