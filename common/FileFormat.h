#pragma once

#include <cstddef>

#include "common/FileLimits.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The formats of the files that a product line consists of. */
enum class FileFormat {
    NONE,          /**< no file */
    OPAQUE,        /**< any file: the service hands out its path or its bytes */
    CUSTOMER,      /**< "customer.ini" */
    SYSTEM,        /**< the list of models */
    PROJECT,       /**< a model, or a board */
    AUXILIARY,     /**< audio, karaoke, keys, DDC/CI */
    TV_FEATURES,   /**< the features of IMlkTvConfigs */
    COUNTRY_LIST,  /**< names of countries */
    LANGUAGE_LIST, /**< names of languages */
    TV_SYSTEMS,    /**< what a TV system changes; XML */
    COUNTRY_MAP,   /**< TV system and TV feature file of each country; XML */
    CHANNEL_MAP,   /**< the channel plans of each country; XML */
    CHANNEL_PLAN,  /**< channels */
    CHANNEL_PLANS, /**< a folder with a channel map and its plans */
    PROJECT_ID,    /**< the index of the model */
    BOARD_ID,      /**< the path of the board file */
    COUNTRY_ID,    /**< the saved country */
};

/** A format's name and limits. */
struct FileFormatRow {
    FileFormat format;
    const char* name;   /**< as documents and messages have it */
    size_t longestLine; /**< in bytes, without the line end; 0 for a format without such a limit */
    size_t mostBytes;   /**< a larger file is not used; 0 for a format without such a limit */
};

/** All formats that the service reads. */
inline const FileFormatRow kFileFormats[] = {
        {FileFormat::CUSTOMER, "customer file", kListBufferSize - 1, kMostProjectBytes},
        {FileFormat::SYSTEM, "system file", kListBufferSize - 1, kMostProjectBytes},
        {FileFormat::PROJECT, "project or board file", kProjectBufferSize - 1, kMostProjectBytes},
        {FileFormat::AUXILIARY, "auxiliary file", kListBufferSize - 1, kMostListBytes},
        {FileFormat::TV_FEATURES, "TV feature file", kFeatureLineSize - 1, kMostFeatureBytes},
        {FileFormat::COUNTRY_LIST, "country list", kListBufferSize - 1, kMostListBytes},
        {FileFormat::LANGUAGE_LIST, "language list", kListBufferSize - 1, kMostListBytes},
        {FileFormat::TV_SYSTEMS, "TV system file", 0, kMostListBytes},
        {FileFormat::COUNTRY_MAP, "country map", 0, kMostListBytes},
        {FileFormat::CHANNEL_MAP, "map of channel plans", 0, kMostListBytes},
        {FileFormat::CHANNEL_PLAN, "channel plan", kPlanPieceSize, kMostListBytes},
        {FileFormat::PROJECT_ID, "project_id.bin", 0, kMostIdentityBytes},
        {FileFormat::BOARD_ID, "board_id.bin", kListBufferSize - 1, kMostIdentityBytes},
        {FileFormat::COUNTRY_ID, "country_id.bin", kListBufferSize - 1, kMostIdentityBytes},
};

/** The row of a format; null for those that the service does not read. */
inline const FileFormatRow* formatRow(FileFormat format) {
    for (const FileFormatRow& row : kFileFormats) {
        if (row.format == format) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
