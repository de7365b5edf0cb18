#pragma once

#include <string>

#include "tools/mlktree/ProductLine.h"

/** A tree as a command opens it. */
struct OpenedTree {
    /** @throw UsageError as the parts do */
    explicit OpenedTree(const std::string& root)
        : tree(root, {}),
          settings(mlk::tree::readSettings(root + "/mlktree.toml")),
          properties(root + "/data/property", {}),
          line(tree, settings, properties, {}) {}

    const mlk::tree::Tree tree;
    const mlk::tree::Settings settings;
    const mlk::tree::TreeProperties properties;
    const mlk::tree::ProductLine line;
};
