// The stores that use a library.

// Disables conversion to other encodings, which takes time and needs a library.
#define SI_NO_CONVERSION
#include <SimpleIni.h>
#include <glib.h>
#include <ini.h>

#include <boost/property_tree/ini_parser.hpp>
#include <stdexcept>

#include "bench/peers/IniStores.h"

namespace mlk::bench {

InihStore::InihStore(const std::string& path, const Mounts& /*mounts*/) {
    const auto add = [](void* items, const char* section, const char* key, const char* value) {
        (*static_cast<NamedValues*>(items))[{section, key}] = value;
        return 1;
    };
    if (ini_parse(path.c_str(), add, &mItems) != 0) {
        throw std::runtime_error(path);
    }
}

struct SimpleIniStore::File : CSimpleIniCaseA {};

SimpleIniStore::SimpleIniStore(const std::string& path, const Mounts& /*mounts*/)
    : mFile(std::make_unique<File>()) {
    if (mFile->LoadFile(path.c_str()) < 0) {
        throw std::runtime_error(path);
    }
}

SimpleIniStore::~SimpleIniStore() = default;

NamedValues SimpleIniStore::items() const {
    NamedValues items;
    CSimpleIniCaseA::TNamesDepend sections;
    mFile->GetAllSections(sections);
    for (const auto& section : sections) {
        CSimpleIniCaseA::TNamesDepend keys;
        mFile->GetAllKeys(section.pItem, keys);
        for (const auto& key : keys) {
            items[{section.pItem, key.pItem}] = mFile->GetValue(section.pItem, key.pItem);
        }
    }
    return items;
}

KeyFileStore::KeyFileStore(const std::string& path, const Mounts& /*mounts*/)
    : mFile(g_key_file_new()) {
    if (!g_key_file_load_from_file(mFile, path.c_str(), G_KEY_FILE_NONE, nullptr)) {
        g_key_file_unref(mFile);
        throw std::runtime_error(path);
    }
}

KeyFileStore::~KeyFileStore() {
    g_key_file_unref(mFile);
}

KeyFileStore::Text KeyFileStore::getInfo(const Question& question) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return {g_key_file_get_value(mFile, question.section.c_str(), question.key.c_str(), nullptr),
            g_free};
}

NamedValues KeyFileStore::items() const {
    NamedValues items;
    gchar** const groups = g_key_file_get_groups(mFile, nullptr);
    for (gchar** group = groups; *group != nullptr; ++group) {
        gchar** const keys = g_key_file_get_keys(mFile, *group, nullptr, nullptr);
        for (gchar** key = keys; *key != nullptr; ++key) {
            items[{*group, *key}] = getInfo({"", *group, *key}).get();
        }
        g_strfreev(keys);
    }
    g_strfreev(groups);
    return items;
}

struct PropertyTreeStore::Tree {
    boost::property_tree::ptree root;
};

PropertyTreeStore::PropertyTreeStore(const std::string& path, const Mounts& /*mounts*/)
    : mTree(std::make_unique<Tree>()) {
    boost::property_tree::read_ini(path, mTree->root);
}

PropertyTreeStore::~PropertyTreeStore() = default;

NamedValues PropertyTreeStore::items() const {
    NamedValues items;
    for (const auto& [section, keys] : mTree->root) {
        for (const auto& [key, value] : keys) {
            items[{section, key}] = value.data();
        }
    }
    return items;
}

}  // namespace mlk::bench
