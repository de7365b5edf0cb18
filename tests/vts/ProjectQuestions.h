#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <string>

#include "tests/vts/Ask.h"
#include "tests/vts/PlainSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

// The calls of IMlkProjectConfigs with arguments that matter on this set, and the right answers.

using ProjectService = ::android::sp<IMlkProjectConfigs>;

/** Identity, items by their getters, by key and by section; calls that get no answer. */
Questions itemQuestions(const ProjectService& service, const PlainSet& set);
/** Countries, languages, and whether the TV system follows the country. */
Questions listQuestions(const ProjectService& service, const PlainSet& set);
/** The karaoke, key and DDC/CI files. */
Questions customerFileQuestions(const ProjectService& service, const PlainSet& set);
/** The sums of delays, with the file of this AVR in use. */
Questions audioQuestions(const ProjectService& service, const PlainSet& set,
                         const AuxiliaryFile& avr);
/** Files that items name, and invalid paths, for the three methods that take a path. */
Questions fileQuestions(const ProjectService& service, const PlainSet& set);
/**
 * Every table of every country. The service learns names of modulations from tables and names of
 * countries from lists, so the expected answers are those of a service that has read everything.
 */
Questions frequencyQuestions(const ProjectService& service, const PlainSet& set);

/** The text that debug() writes into a pipe. A failed call fails the test. */
std::string dumpOf(const ::android::sp<::android::hidl::base::V1_0::IBase>& service);

/** The file of the AVR that the service uses. No method tells it: the delays do. */
AuxiliaryFile avrInUse(const ProjectService& service, const PlainSet& set);

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
