// Packages byte by byte, and what comes out of them.
#pragma once

#include "package/package.h"
#include "unit/temp_folder.h"

inline std::string Table(const std::vector<std::int32_t>& values) {
    return Ints({static_cast<std::int32_t>(values.size())}) + Ints(values);
}
inline std::string Header(const std::string& text) {
    return Ints({static_cast<std::int32_t>(text.size())}) + text;
}

// A cursor at the first byte; the text must outlive it.
inline FXPackageData CursorOf(const std::string& record) {
    FXPackageData data;
    data.InitData(record.data(), static_cast<int>(record.size()));
    return data;
}

// The bytes of an entry; "none" when there is no such entry.
inline std::string Entry(FXPackage& package, int id) {
    FXPackageData* data = package.GetDataPtr(id);
    return data
               ? std::string(reinterpret_cast<const char*>(data->start), static_cast<std::size_t>(data->size))
               : "none";
}
