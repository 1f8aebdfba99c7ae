#include "pack/toml_table.h"

#include <cmath>
#include <cstdint>
#include <utility>

namespace {

bool localTake(const toml::node& node, std::string* value) {
    const auto found = node.value_exact<std::string>();
    if (found)
        *value = *found;
    return found.has_value();
}

bool localTake(const toml::node& node, int* value) {
    const auto found = node.value_exact<std::int64_t>();
    if (!found || *found < INT32_MIN || *found > INT32_MAX)
        return false;
    *value = static_cast<int>(*found);
    return true;
}

bool localTake(const toml::node& node, bool* value) {
    const auto found = node.value_exact<bool>();
    if (found)
        *value = *found;
    return found.has_value();
}

bool localTake(const toml::node& node, double* value) {
    const auto found = node.value<double>();
    if (!found || !node.is_number() || !std::isfinite(*found))
        return false;
    *value = *found;
    return true;
}

bool localTake(const toml::node& node, float* value) {
    double found = 0;
    if (!localTake(node, &found) || !std::isfinite(static_cast<float>(found)))
        return false;
    *value = static_cast<float>(found);
    return true;
}

} // namespace

void TomlTable::Fail(int line, const std::string& text) {
    if (problem_->empty())
        *problem_ = file_ + ":" + std::to_string(line) + ": " + text;
}

const toml::node* TomlTable::Take(const char* key) {
    taken_.insert(key);
    return table_.get(key);
}

template <class T>
void TomlTable::ReadOne(const char* key, const toml::node* node, T* value, const char* wanted) {
    if (node != nullptr && !localTake(*node, value))
        Fail(*node, std::string(key) + " must be " + wanted);
}

template <class T> void TomlTable::ReadAll(const char* key, std::vector<T>* values, const char* wanted) {
    const toml::node* node = Take(key);
    if (node == nullptr)
        return;
    const toml::array* array = node->as_array();
    if (array == nullptr)
        return Fail(*node, std::string(key) + " must be a list of " + wanted + ", in [ ]");
    for (const toml::node& element : *array) {
        T value{};
        if (!localTake(element, &value))
            return Fail(element, std::string(key) + " must be a list of " + wanted);
        values->push_back(std::move(value));
    }
}

void TomlTable::Read(const char* key, std::string* value) {
    ReadOne(key, Take(key), value, "a text, in \" \"");
}
void TomlTable::Read(const char* key, int* value) {
    ReadOne(key, Take(key), value, "a whole number of 32 bits");
}
void TomlTable::Read(const char* key, bool* value) {
    ReadOne(key, Take(key), value, "true or false");
}
void TomlTable::Read(const char* key, float* value) {
    ReadOne(key, Take(key), value, "a number");
}
void TomlTable::Read(const char* key, double* value) {
    ReadOne(key, Take(key), value, "a number");
}
void TomlTable::Read(const char* key, std::vector<std::string>* values) {
    ReadAll(key, values, "texts");
}
void TomlTable::Read(const char* key, std::vector<int>* values) {
    ReadAll(key, values, "whole numbers");
}
void TomlTable::Read(const char* key, std::vector<float>* values) {
    ReadAll(key, values, "numbers");
}

void TomlTable::Finish() {
    for (const auto& [key, node] : table_)
        if (taken_.find(key.str()) == taken_.end())
            Fail(static_cast<int>(key.source().begin.line),
                 "nothing is known of '" + std::string(key.str()) + "' here (see tamb-pack build --help)");
}
