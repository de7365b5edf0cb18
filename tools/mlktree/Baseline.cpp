#include "tools/mlktree/Baseline.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <tuple>

#include "tools/common/Json.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

using Json = nlohmann::json;

constexpr int kVersion = 1;

bool isDigit(char sign) {
    return sign >= '0' && sign <= '9';
}

// "line 12" becomes "line #": the line that a message names may move.
std::string withoutLineNumbers(std::string_view message) {
    std::string out;
    for (size_t at = 0; at < message.size();) {
        const bool isAfterLine =
                (out.size() >= 5 && out.compare(out.size() - 5, 5, "line ") == 0) ||
                (out.size() >= 6 && out.compare(out.size() - 6, 6, "lines ") == 0);
        if (isAfterLine && isDigit(message[at])) {
            out += '#';
            while (at < message.size() && isDigit(message[at])) {
                ++at;
            }
        } else {
            out += message[at++];
        }
    }
    return out;
}

std::string jsonOf(const Identity& identity) {
    return JsonObject()
            .text("rule", identity.rule)
            .text("file", identity.file)
            .text("message", identity.message)
            .text("text", identity.text)
            .str();
}

[[noreturn]] void refuse(const std::string& path, const std::string& why) {
    throw UsageError(path + " is no baseline of mlktree: " + why +
                     "; mlktree check --write-baseline writes one");
}

std::string textOf(const Json& entry, const char* key, const std::string& path) {
    const auto found = entry.find(key);
    if (found == entry.end() || !found->is_string()) {
        refuse(path, std::string("an entry lacks the text \"") + key + "\"");
    }
    return found->get<std::string>();
}

}  // namespace

bool operator<(const Identity& a, const Identity& b) {
    const auto key = [](const Identity& one) {
        return std::tie(one.file, one.text, one.rule, one.message);
    };
    return key(a) < key(b);
}

Identity identityOf(const Finding& finding, const LineOf& lineOf) {
    std::string text;
    if (finding.place.line != 0) {
        text = printable(trimmed(lineOf(finding.place.file, finding.place.line)));
    }
    return {finding.rule, printable(finding.place.file),
            printable(withoutLineNumbers(finding.message)), std::move(text)};
}

Baseline::Baseline(const std::vector<Finding>& findings, const LineOf& lineOf) {
    for (const Finding& finding : findings) {
        ++mKnown[identityOf(finding, lineOf)];
    }
}

Baseline Baseline::parse(std::string_view text, const std::string& path) {
    const Json root = Json::parse(text, nullptr, false);
    if (!root.is_object()) {
        refuse(path, "it is no JSON object");
    }
    const auto version = root.find("version");
    if (version == root.end() || *version != kVersion) {
        refuse(path, "its version is not " + std::to_string(kVersion));
    }
    const auto findings = root.find("findings");
    if (findings == root.end() || !findings->is_array()) {
        refuse(path, "it has no list \"findings\"");
    }
    Baseline baseline;
    for (const Json& entry : *findings) {
        if (!entry.is_object()) {
            refuse(path, "an entry is no JSON object");
        }
        ++baseline.mKnown[{textOf(entry, "rule", path), textOf(entry, "file", path),
                           textOf(entry, "message", path), textOf(entry, "text", path)}];
    }
    return baseline;
}

std::string Baseline::text() const {
    std::string out;
    const TextSink sink = [&out](std::string_view piece) { out += piece; };
    JsonLines findings(JsonObject().number("version", kVersion), "findings", sink);
    for (const auto& [identity, count] : mKnown) {
        for (size_t i = 0; i < count; ++i) {
            findings.add(jsonOf(identity));
        }
    }
    findings.end();
    return out;
}

void Baseline::apply(CheckReport& report, const LineOf& lineOf) const {
    std::map<Identity, size_t> left = mKnown;
    std::vector<Finding> fresh;
    for (Finding& finding : report.findings) {
        const auto known = left.find(identityOf(finding, lineOf));
        if (known == left.end() || known->second == 0) {
            fresh.push_back(std::move(finding));
            continue;
        }
        --known->second;
        report.allowed.push_back({std::move(finding), AllowedBy::BASELINE, "the baseline has it"});
    }
    report.findings = std::move(fresh);
    report.hasBaseline = true;
    report.gone = 0;
    for (const auto& [identity, count] : left) {
        report.gone += count;
    }
}

size_t Baseline::size() const {
    size_t all = 0;
    for (const auto& [identity, count] : mKnown) {
        all += count;
    }
    return all;
}

std::string Fingerprints::next(const Finding& finding) {
    const Identity identity = identityOf(finding, mLineOf);
    // FNV-1a: the same on every machine and in every release.
    uint64_t hash = 0xcbf29ce484222325U;
    const auto mix = [&](std::string_view text) {
        for (const char sign : text) {
            hash = (hash ^ static_cast<unsigned char>(sign)) * 0x100000001b3U;
        }
        hash *= 0x100000001b3U;
    };
    for (const std::string* part :
         {&identity.rule, &identity.file, &identity.message, &identity.text}) {
        mix(*part);
    }
    mix(std::to_string(mSeen[identity]++));
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (int shift = 60; shift >= 0; shift -= 4) {
        text += kDigits[hash >> static_cast<unsigned>(shift) & 0xfU];
    }
    return text;
}

}  // namespace mlk::tree
