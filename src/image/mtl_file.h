// Wavefront MTL files (the format: Wavefront Advanced Visualizer manual, appendix B1).
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

// What the file says of a material; nothing where it is silent.
struct FXMtlMaterial {
    using Color = std::array<float, 3>; // red, green, blue

    std::string name;
    std::optional<Color> ambient, diffuse, specular, emission; // Ka, Kd, Ks, Ke
    std::optional<float> shininess;                            // Ns, brought into 0..128
    std::optional<float> alpha;                                // d; without one, 1 - Tr
    std::string picture; // the file of map_Kd without the options before it; empty: none
};

// The materials in the text of a file. A statement that is none is passed over; the first one is named in
// `fault` as "LINE: what is wrong" when a fault is asked for.
std::vector<FXMtlMaterial> fxReadMtl(const std::string& text, std::string* fault = nullptr);
