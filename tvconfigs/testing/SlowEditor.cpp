#include "tvconfigs/testing/SlowEditor.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

FILE* openOrThrow(const std::string& path, const char* mode) {
    FILE* file = fopen(path.c_str(), mode);
    if (file == nullptr) {
        throw std::runtime_error("cannot open " + path);
    }
    return file;
}

}  // namespace

void SlowEditor::update(const std::string& path) {
    FILE* file = openOrThrow(path, "r");
    items.clear();
    char buffer[1024];
    int count = 0;
    while (true) {
        const int byte = fgetc(file);
        if (byte == 0) {
            break;
        }
        if (count == 1024) {
            ++linesTooLong;
            break;
        }
        if (byte == '\r') {
            continue;
        }
        if (byte == EOF) {
            break;
        }
        if (byte != '\n') {
            buffer[count++] = static_cast<char>(byte);
            continue;
        }
        buffer[count] = '\0';
        count = 0;
        if (buffer[0] == '#') {
            continue;
        }
        takeLine(buffer);
    }
    fclose(file);
}

void SlowEditor::takeLine(const char* line) {
    int equals = -1;
    for (int i = 0; line[i] != '\0'; ++i) {
        if (line[i] == '=') {
            equals = i;
        }
    }
    if (equals >= 0) {
        items.emplace_back(std::string(line, static_cast<size_t>(equals)), line + equals + 1);
    }
}

bool SlowEditor::updateValue(const std::string& key, const std::string& value) {
    for (auto& item : items) {
        if (item.first == key) {
            item.second = value;
            return true;
        }
    }
    return false;
}

void SlowEditor::save(const std::string& path) const {
    FILE* file = openOrThrow(path, "wb");
    for (const auto& [key, value] : items) {
        char buffer[1024];
        memset(buffer, 0, sizeof buffer);
        const std::string line = key + '=' + value + '\n';
        for (size_t i = 0; i < line.size() && i < sizeof buffer - 1; ++i) {
            buffer[i] = line[i];
        }
        for (const char byte : buffer) {
            fputc(byte, file);
            if (byte == '\n') {
                break;
            }
        }
    }
    fclose(file);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
