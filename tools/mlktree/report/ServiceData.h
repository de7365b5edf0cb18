#pragma once

#include "tools/common/Json.h"
#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/report/FileTable.h"
#include "tools/mlktree/report/TextTable.h"

namespace mlk::tree {

/**
 * Adds to the data of a report what the service knows of names, whatever the line: the rows of
 * `mlktree show`, known items, modulations, flags; and for each TV system file of the line, what it
 * says of each of these countries.
 */
void addService(JsonObject& data, const ProductLine& line, const FileTable& files,
                TextTable& texts);

}  // namespace mlk::tree
