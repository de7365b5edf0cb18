// Lists of countries and of languages: the same file read as each.

#include "host/testing/TempDir.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "regional/CountryListParser.h"
#include "regional/LanguageListParser.h"
#include "regional/testing/PlainRegional.h"
#include "regional/tests/RegionalFiles.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;
namespace fuzzing = mlk::fuzzing;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const mlk::testing::TempDir dir;
    static const std::string path = dir.path("list.txt");
    RegionalPeer::forget();
    const std::string text(reinterpret_cast<const char*>(data), size);
    fuzzing::writeFile(path, text);
    const std::vector<std::string> entries = plain::listEntries(text);

    std::vector<std::string> languages = {"before"};
    LanguageListParser::GetInstance().getLanguageList(path, languages);
    fuzzing::require(languages.front() == "before", "languages are appended");
    languages.erase(languages.begin());
    fuzzing::require(languages == entries, "the languages are the entries");

    CountryListParser& parser = CountryListParser::GetInstance();
    const std::vector<_tv_country> countries = parser.getCountryList("\"" + path + "\"");
    fuzzing::require(countries.size() == entries.size(), "a country an entry");
    plain::Names names = plain::countries();
    for (size_t i = 0; i < entries.size(); ++i) {
        fuzzing::require(countries[i] == names[entries[i]], "a country is known by its name");
    }
    for (const int32_t value : {-1, 0, 14, 161, 185, 186}) {
        std::string name = "none";
        const std::string expected = plain::firstNameOf(names, value);
        const bool known = parser.getCountryName(_tv_country{value}, name);
        fuzzing::require(known == (value != 161 && value != 186), "a value has a name");
        fuzzing::requireEqual("the name of a country", name, known ? expected : "none");
    }
    return 0;
}
