// The package: one file with all assets, read whole into memory, its entries found by number.
#pragma once

#include "base/arrays.h"
#include "base/owner_array.h"
#include "base/str.h"
#include "base/str_array.h"
#include "package/name_server.h"
#include "package/package_data.h"

#include <cstring>

// Entry types are the image library's codes for picture files (IL_BMP, IL_JPG, IL_PNG, IL_TGA, IL_GIF), and
// kRaw for everything else.
enum FXEntryType : int {
    kRaw = -1,
    kBmp = 0x420,
    kJpeg = 0x425,
    kPng = 0x42A,
    kTga = 0x42D,
    kGif = 0x436,
};

// What the name of a picture file ends with, and the type of its entry.
struct FXPictureEnding {
    const char* ending;
    int type;
};
inline constexpr FXPictureEnding kPictureEndings[] = {
    {"jpg", kJpeg}, {"png", kPng}, {"tga", kTga}, {"bmp", kBmp}, {"gif", kGif}};

// Owns the entries' bytes and a cursor for each. Loading and reading happen on one thread.
class FXPackage : public FXNameServer {
public:
    static constexpr int kScrambled = 1; // flag of Save
    // What a package begins with, and what it begins with when its body is scrambled.
    static constexpr char kHeader[] = "pck01";
    static constexpr char kScrambledHeader[] = "pck01s";
    static bool IsHeader(const FXStr& header) { return header.nCompare(kHeader, kHeaderLength); }
    // Of a header: an s anywhere behind the common start.
    static bool SaysScrambled(const FXStr& header) {
        return std::strchr(header.text + kHeaderLength, 's') != nullptr;
    }

    FXPackage() = default;
    ~FXPackage() { Destroy(); }
    FXPackage(const FXPackage&) = delete;
    FXPackage& operator=(const FXPackage&) = delete;

    // Replaces the contents; after a failure (no file, no package, no memory, beyond 2 GiB) the package is
    // empty. What is wrong with the file, or missing from it, is then in `problem`.
    bool Load(const char* fileName);
    // The cursor of the first entry with that id, rewound; null when there is none. Every call gives the same
    // cursor.
    FXPackageData* GetDataPtr(int id);
    int GetDataType(int id) const; // kRaw (-1) when there is none
    void Destroy();                // the names stay

    // Building. Queued files are read by Save. False when there is no memory to queue one.
    bool AddDataFile(int id, const char* file);
    // Queues the file under the id of its name, once per name, and replaces the name by the id in decimal.
    void AddDataFile1(FXStr* name);
    // Appends the queued files and writes the package, scrambled if asked. It is written under another name
    // beside fileName, which it replaces only when complete. False, with the contents, the queue and the old
    // file as they were, when a file cannot be read or written or the package would be beyond 2 GiB.
    bool Save(const char* fileName, int flags);
    // Length and type of a file. The type comes from the name: what follows its last dot, but never its first
    // two characters. False, with length 0, when the file cannot be read or is beyond 2 GiB.
    static bool CheckFile(const char* file, int* size, int* type);
    bool SaveNames(const char* file) const;
    bool LoadNames(const char* file);
    bool SaveNamesCpp(const char* file) const; // a C header: #define FXNAME_<name>  <id>
    // Queues the file NAME.tmp, which is given in `file`, under the id of its name, and replaces the name by
    // the id in decimal. True for the first of a name: the file, which is temporary, is still to be written.
    bool AddTmpDataFile(FXStr* name, FXStr* file);
    void AddTmpFile(const char* file);
    void DeleteTmpFiles(); // from the disk

    // The entries' bytes, inside the block that holds the file's body; null when there are none.
    unsigned char* dataBlock = nullptr;
    int dataSize = 0;
    FXArray<int> ids;
    FXArray<int> offsets; // of each entry, from the start of dataBlock
    FXArray<int> sizes;
    FXArray<int> types;
    FXOwnerArray<FXPackageData> cursors;
    FXArray<int> pendingIds;
    FXStrArray pendingFiles;
    FXStrArray tmpFiles;
    FXStr problem; // of the last load, e.g. "ends too early"; empty: none

private:
    static constexpr int kHeaderLength = sizeof kHeader - 1;
    bool LoadFile(const char* fileName);
    bool TakeBody(FXBytes body, int size);
    void RecompClasses();

    FXBytes block; // what dataBlock points into
};
