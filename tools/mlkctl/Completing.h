#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/mlkctl/Interface.h"
#include "tools/mlkctl/Services.h"

/**
 * What a shell offers for the word that is being typed. The shells' scripts ask mlkctl itself
 * (mlkctl complete -- WORD...), so that the verb table and the running service are the only
 * sources.
 */
namespace mlk::ctl {

/** A word that may stand here, and what it is, for shells that show that. */
struct Candidate {
    std::string value;
    std::string text = {};
};
using Candidates = std::vector<Candidate>;

/** A place in a verb's words. */
struct Completing {
    const std::vector<std::string>& before;  // the verb's words in front, without its options
    const std::string& current;              // the word so far
    Services& services;
};

/**
 * The candidates for the last of the words, which follow the program's name: those that begin with
 * it, and paths that it stands for. A service that cannot be reached has none.
 */
Candidates candidatesFor(const std::vector<std::string>& words, Services& services);

/** Interfaces by all their names; methods, too, once something is typed. */
Candidates interfaceCandidates(const std::string& current);

/** The methods of an interface with their summaries. */
Candidates methodCandidates(const Interface& interface);

/** The values for a word of a method; `before` are the words of the call in front of it. */
Candidates argumentCandidates(const Method& method, const std::vector<std::string>& before,
                              const Completing& at);

/**
 * The project's sections, without their brackets unless the current word begins with one. Without
 * a service, those that the interfaces' definitions name.
 */
Candidates sectionCandidates(const Method& method, const Completing& at);

/** The keys of a section, which may be written without its brackets. */
Candidates keyCandidates(const Method& method, const std::string& section, const Completing& at);

}  // namespace mlk::ctl
