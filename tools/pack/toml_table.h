// One table of a TOML file, key by key; the first thing that is not as it should be is kept, with its place.
#pragma once

// Headers alone, and no exceptions: the library's binary throws.
#define TOML_HEADER_ONLY 1
#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>

#include "pack/text.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

class TomlTable {
public:
    // `file` and the first problem are the caller's.
    TomlTable(const toml::table& table, const std::string& file, std::string* problem)
        : table_(table), file_(file), problem_(problem) {}

    // Null when the table has no such key, which then is known to be meant.
    const toml::node* Take(const char* key);
    bool Has(const char* key) const { return table_.contains(key); }
    // Each leaves the value as it is when there is no such key.
    void Read(const char* key, std::string* value);
    void Read(const char* key, int* value);
    void Read(const char* key, bool* value);
    void Read(const char* key, float* value);
    void Read(const char* key, double* value);
    void Read(const char* key, std::vector<std::string>* values);
    void Read(const char* key, std::vector<int>* values);
    void Read(const char* key, std::vector<float>* values);
    // Keys that nobody took are mistakes.
    void Finish();

    void Fail(const toml::node& at, const std::string& text) { Fail(LineOf(at), text); }
    void Fail(int line, const std::string& text);
    bool Good() const { return problem_->empty(); }
    int Line() const { return LineOf(table_); }
    static int LineOf(const toml::node& node) { return static_cast<int>(node.source().begin.line); }

private:
    template <class T> void ReadOne(const char* key, const toml::node* node, T* value, const char* wanted);
    template <class T> void ReadAll(const char* key, std::vector<T>* values, const char* wanted);

    const toml::table& table_;
    const std::string& file_;
    std::string* problem_;
    std::set<std::string, std::less<>> taken_;
};
