// What models and animations are made of, read strictly.
#pragma once

#include "geometry/mesh_record.h"
#include "pack/record_reader.h"

#include <array>
#include <string>

struct MeshFacts {
    std::string material;
    int vertices = 0; // stored, or of a packed mesh the most that it may make
    int corners = 0;
};

// The highest numbers of position, normal and texture coordinate that a pool names, and where.
struct PoolNumbers {
    std::array<int, 3> highest = {-1, -1, -1};
    std::array<int, 3> offset = {};
};
using MapCounts = std::array<int, 3>;

class ShapeReader : public RecordReader {
public:
    using RecordReader::RecordReader;
    template <class Record> bool Checked(const Record&) { return true; }
    bool Checked(const FXMeshRecord& mesh); // can it be drawn?
};

// `which`: the mesh or map in a fault's text, as "mesh 2".
bool ReadFullMesh(ShapeReader* reader, const std::string& which, MeshFacts* mesh);
bool ReadPackedMesh(ShapeReader* reader, const std::string& which, MeshFacts* mesh);
bool ReadPool(ShapeReader* reader, const std::string& which, const MeshFacts& mesh, PoolNumbers* numbers);
bool ReadVectorMap(ShapeReader* reader, const std::string& which, MapCounts* counts);
// Every number has its vector. `which` is the map.
bool CheckNumbers(ShapeReader* reader, const std::string& mesh, const PoolNumbers& numbers,
                  const std::string& which, const MapCounts& counts);
