// Fuzzes the TV feature file: first its content, then the changes that clients make, one line
// "key=value" each. After each change a reader must find what the plain rules say.

#include <unistd.h>

#include <string>

#include "host/testing/TempDir.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/testing/SlowEditor.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fuzzing = mlk::fuzzing;

namespace {

struct Set {
    const mlk::testing::TempDir dir;
    const std::string file = dir.path("tv.config");
    const std::string saved = dir.path("saved");
    const std::string slow = dir.path("slow");
};

const Set& set() {
    static const Set theSet;
    return theSet;
}

std::string savedBy(FileConfigEditor& editor) {
    fuzzing::require(editor.Save(set().saved.c_str()), "the file can be saved");
    return fuzzing::readFile(set().saved);
}

std::string savedBy(const SlowEditor& editor) {
    editor.save(set().slow);
    return fuzzing::readFile(set().slow);
}

void setOne(FileConfigEditor& editor, SlowEditor& slow, const std::string& line) {
    const size_t equals = line.find('=');
    if (equals == std::string::npos) {
        return;
    }
    const std::string key = line.substr(0, equals);
    const std::string value = line.substr(equals + 1);
    const bool known = slow.updateValue(key, value);
    fuzzing::require(editor.Set(key.c_str(), value.c_str()) == known, "only known keys are set");
    char answer[ConfigEditor::kValueSize] = {};
    fuzzing::require(editor.Get(key.c_str(), answer) == known, "only known keys have a value");
    if (known) {
        fuzzing::requireEqual("the value", answer, value.substr(0, 91));
        fuzzing::requireEqual("the file", fuzzing::readFile(set().file), savedBy(slow));
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const fuzzing::Files files(data, size, 2);
    fuzzing::writeFile(set().file, files.text(0));
    FileConfigEditor editor(set().file.c_str());
    SlowEditor slow;
    slow.update(set().file);
    fuzzing::requireEqual("what was read", savedBy(editor), savedBy(slow));
    for (const std::string& line : fuzzing::split(files.text(1), "\n", 8)) {
        // Keys and values are C strings: they end at a NUL.
        setOne(editor, slow, line.c_str());
    }
    // Read the file again, and then another file with the same editor.
    FileConfigEditor again(set().file.c_str());
    slow.update(set().file);
    fuzzing::requireEqual("what was read again", savedBy(again), savedBy(slow));
    fuzzing::require(again.Update(set().saved.c_str()), "a saved file can be read");
    slow.update(set().saved);
    fuzzing::requireEqual("what was read from another file", savedBy(again), savedBy(slow));
    return 0;
}
