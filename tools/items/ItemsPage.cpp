#include "tools/items/ItemsPage.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <vector>

#include "frameworkconfigs/FrameworkItems.h"
#include "projectconfigs/ChainKeywords.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/KnownProperties.h"
#include "regional/CountryTable.h"
#include "regional/Modulations.h"
#include "tvconfigs/TvConfigItems.h"

namespace mlk {

namespace {

namespace product = ::vendor::morlak::mlkconfigs::V1_0::implementation;

using product::FileFormat;
using product::ValueType;
using Texts = std::vector<std::string>;

constexpr const char* kHead = R"(# Items

Everything that the service looks for. [formats.md](formats.md) says how it reads the files,
[reference.md](reference.md) what the methods answer.

This page is written from the tables `projectconfigs/KnownItems.h`, `projectconfigs/ChainKeywords.h`,
`projectconfigs/KnownProperties.h`, `regional/RegionalNames.h`, `regional/Modulations.h`,
`tvconfigs/TvConfigItems.h` and `frameworkconfigs/FrameworkItems.h`; a test compares them. After a change there:

```console build
$ cmake --build build/default --target reference
```

- [Values](#values) · [Customer, system and identity files](#customer-system-and-identity-files)
- [Project and board files](#project-and-board-files) · [Auxiliary files](#auxiliary-files) · [XML files](#xml-files)
- [TV features](#tv-features) · [Properties](#properties)
- [Modulations](#modulations) · [Countries](#countries)

## Values

The column "value" says what the service makes of a text:

| value | what it is |
|---|---|
| text | is answered as it is |
| path | is answered with its partition's mount point in front, whether the file exists or not |
| exact switch | true for exactly `true`, false for everything else |
| number | a decimal number: `0x10` and a text without digits are 0, `12abc` is 12 |
| feature | `true`, `false`, or a number, of which those above 0 are true; false when missing |
| switch | on for `1`, `true`, `y`, `yes` and `on`, off for `0`, `false`, `n`, `no` and `off`; any other text, `True` among them, and no text are off |
| number of any base | hexadecimal after `0x`, octal after `0`, else decimal: `0x10` is 16, `010` is 8, `08` is 0. What follows the digits is ignored. A text that does not begin with a number, a number that does not fit into 32 bits, and no text are 0 |
| inverted number | a number of any base, of which 0 is true, and any other is false |
)";

constexpr const char* kKeywords = R"(
## Customer, system and identity files

A word counts anywhere in a line; the value follows the `=`.

)";

constexpr const char* kProject = R"(
## Project and board files

Clients may ask `getConfig` and `getConfigsByCategory` for any other item, too.

)";

constexpr const char* kAuxiliary = R"(
## Auxiliary files

The getters that the table above names for audio, karaoke, keys and DDC/CI take section and key from the client. The
service knows no section and no key of these files.
)";

constexpr const char* kXml = R"(
## XML files

)";

constexpr const char* kFeatures = R"(
## TV features

What `IMlkTvConfigs` answers. Each is an entry of the TV feature file; if the file has no such key, it is the system property of that name. A system may
be set within its range; a value that is read is not checked.

)";

constexpr const char* kProperties = R"(
## Properties

The methods are those of `IMlkFrameworkConfigs`.

)";

constexpr const char* kModulations = R"(
## Modulations

The names in channel plans and their numbers in answers. The name of 1 has its brace; `ATV` is a label.

)";

constexpr const char* kCountries = R"(
## Countries

The names, as they stand in lists and maps. `DEFAULT` is -1, `ANDORRA` 0, and each is one more than the one before it,
but for 161, which is nobody's: `SAMOA` is 160 and `MALI` 162. `country_id.bin` and clients have the number.

```countries
)";

std::string code(std::string_view text) {
    return '`' + std::string(text) + '`';
}

std::string row(const Texts& cells) {
    std::string text = "|";
    for (const std::string& cell : cells) {
        text += cell.empty() ? "  |" : ' ' + cell + " |";
    }
    return text + '\n';
}

std::string heading(const Texts& titles) {
    std::string rule = "|";
    for (size_t i = 0; i < titles.size(); ++i) {
        rule += "---|";
    }
    return row(titles) + rule + '\n';
}

std::string nameOf(FileFormat format) {
    const product::FileFormatRow* const found = product::formatRow(format);
    if (found == nullptr) {
        return "";
    }
    const std::string name = found->name;
    return name.find('.') != std::string::npos ? code(name) : name;
}

std::string nameOf(ValueType type) {
    switch (type) {
        case ValueType::TEXT:
            return "text";
        case ValueType::PATH:
            return "path";
        case ValueType::FOLDER:
            return "path of a folder";
        case ValueType::SWITCH:
            return "exact switch";
        case ValueType::INTEGER:
            return "number";
        case ValueType::FEATURE:
            return "feature";
        case ValueType::PROPERTY_SWITCH:
            return "switch";
        case ValueType::PROPERTY_NUMBER:
            return "number of any base";
        case ValueType::INVERTED_NUMBER:
            return "inverted number";
    }
    return "";
}

std::string withNote(const std::string& text, const std::string& note) {
    return text.empty() || note.empty() ? text + note : text + "; " + note;
}

/** "path of a country list" */
std::string valueOf(ValueType type, FileFormat names) {
    const std::string format = nameOf(names);
    const bool isVowel = format.find_first_of("aeiou") == 0;
    return nameOf(type) + (format.empty() ? "" : (isVowel ? " of an " : " of a ") + format);
}

std::string rangeOf(int32_t least, int32_t most) {
    return ' ' + std::to_string(least) + " to " + std::to_string(most);
}

/** "`getEQPath` 0" and "`getAMPSelection` `AMP_MAIN`": the method and each enumerator. */
std::string readerText(std::string_view reader) {
    std::string text;
    while (!reader.empty()) {
        const std::string_view word = reader.substr(0, reader.find(' '));
        reader.remove_prefix(std::min(word.size() + 1, reader.size()));
        const bool isNumber = word.find_first_not_of("0123456789") == std::string_view::npos;
        text += (text.empty() ? "" : " ") + (isNumber ? std::string(word) : code(word));
    }
    return text;
}

template <size_t kSize>
std::string readersText(const std::array<const char*, kSize>& readers) {
    std::string text;
    for (const char* reader : readers) {
        if (reader != nullptr) {
            text += (text.empty() ? "" : ", ") + readerText(reader);
        }
    }
    return text;
}

std::string keywordTable() {
    std::string text = heading({"file", "word", "value", "method"});
    for (const product::ChainKeyword& each : product::kChainKeywords) {
        text += row({nameOf(each.file), code(each.word),
                     withNote(valueOf(each.type, each.names), each.note),
                     readersText(each.readers)});
    }
    return text;
}

std::string itemTable() {
    std::string text = heading({"section", "key", "value", "method"});
    for (const product::KnownItem& each : product::kKnownItems) {
        const std::string range =
                each.type == ValueType::INTEGER ? rangeOf(each.least, each.most) : "";
        text += row({code(each.name.category), code(each.name.key),
                     withNote(valueOf(each.type, each.names) + range, each.note),
                     readersText(each.readers)});
    }
    return text;
}

std::string elementTable() {
    std::string text = heading({"file", "in", "element", "attributes", "text"});
    for (const product::ElementRow& each : product::kElements) {
        std::string attributes;
        for (const char* attribute : each.attributes) {
            if (attribute != nullptr) {
                attributes += (attributes.empty() ? "" : ", ") + code(attribute);
            }
        }
        const std::string value =
                each.names != FileFormat::NONE ? valueOf(each.type, each.names) : "";
        text += row({nameOf(each.file), each.parent != nullptr ? code(each.parent) : "",
                     code(each.name), attributes, withNote(value, each.note)});
    }
    return text;
}

std::string featureTable() {
    std::string text = heading({"key", "value", "methods"});
    const auto add = [&](const auto& each, const std::string& value) {
        text += row({code(each.key), value, code(each.method) + ", " + code(each.setter)});
    };
    for (const product::TvSystemRow& each : product::kTvSystems) {
        add(each, nameOf(each.kType) + "; setters take" + rangeOf(each.least, each.most));
    }
    for (const product::TvFlagRow& each : product::kTvFlags) {
        const product::TvFlagRow* const master = product::masterOf(each);
        add(each, withNote(nameOf(each.kType),
                           master != nullptr ? "false without " + code(master->method) : ""));
    }
    return text;
}

std::string propertyTable() {
    std::string text = heading({"property", "value", "methods"});
    for (const product::FrameworkItemRow& each : product::kFrameworkItems) {
        if (each.property != nullptr) {
            text += row(
                    {code(each.property), nameOf(typeOf(each.kind)),
                     code(each.method) + (each.setter != nullptr ? ", " + code(each.setter) : "")});
        }
    }
    for (const product::KnownProperty& each : product::kKnownProperties) {
        text += row({code(each.key), withNote(nameOf(each.type), each.note), ""});
    }
    return text;
}

std::string modulationTable() {
    auto rows = product::kModulations;
    std::sort(rows.begin(), rows.end(),
              [](const auto& a, const auto& b) { return a.value < b.value; });
    std::string text = heading({"name", "number"});
    for (const product::NamedValue& each : rows) {
        text += row({code(each.name), std::to_string(each.value)});
    }
    return text;
}

std::string countryBlock() {
    constexpr size_t kWidth = 120;
    std::string text;
    std::string line;
    for (const std::string_view name : product::kCountryNames) {
        if (!line.empty() && line.size() + 1 + name.size() > kWidth) {
            text += line + '\n';
            line.clear();
        }
        line += (line.empty() ? "" : " ") + std::string(name);
    }
    return text + line + "\n```\n";
}

}  // namespace

std::string itemsPage() {
    std::string text;
    for (const std::string& part :
         {std::string(kHead), kKeywords + keywordTable(), kProject + itemTable(),
          std::string(kAuxiliary), kXml + elementTable(), kFeatures + featureTable(),
          kProperties + propertyTable(), kModulations + modulationTable(),
          kCountries + countryBlock()}) {
        text += part;
    }
    return text;
}

}  // namespace mlk
