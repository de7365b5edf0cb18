#pragma once

#include "tools/mlktree/Rule.h"

namespace mlk::tree {

// One function for each file of rules; Families.cpp lists them.
RuleFamily readingSpoilt();
RuleFamily readingBytes();
RuleFamily readingLines();
RuleFamily readingValues();
RuleFamily languages();
RuleFamily auxiliaryNames();
RuleFamily replacing();
RuleFamily paths();
RuleFamily pathForms();
RuleFamily names();
RuleFamily boardNames();
RuleFamily features();
RuleFamily itemValues();
RuleFamily properties();
RuleFamily ownItems();
RuleFamily missingItems();
RuleFamily identity();
RuleFamily models();
RuleFamily unused();
RuleFamily allowing();
RuleFamily countries();
RuleFamily coverage();
RuleFamily planLines();
RuleFamily channels();
RuleFamily xml();
RuleFamily maps();
RuleFamily tvSystems();
RuleFamily savedCountry();

}  // namespace mlk::tree
