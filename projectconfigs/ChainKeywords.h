#pragma once

#include <array>
#include <string_view>

#include "common/FileFormat.h"
#include "common/ValueType.h"
#include "regional/RegionalNames.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The files and words by which a set finds its project file and its board file. */
namespace keyword {

// Files, by their path on their partition.
inline constexpr const char* kCustomerFile = "/customer.ini";    /**< of tvconfigs */
inline constexpr const char* kProjectIdFile = "/project_id.bin"; /**< of impdata */
inline constexpr const char* kBoardIdFile = "/board_id.bin";     /**< of impdata */

// Words. Each counts anywhere in a line; the value follows the first "=" of the line.
inline constexpr std::string_view kCustomerId = "CUSTOMER_ID";
inline constexpr std::string_view kSystemFile = "SYS_INI";
inline constexpr std::string_view kModel = "Model_"; /**< the model's index follows */
inline constexpr std::string_view kProjectId = "PROJECT_ID";
inline constexpr std::string_view kBoardId = "BOARD_ID";

/** The board id of a set without a board file. */
inline constexpr std::string_view kNoBoardFile = "DEFAULT_BOARD_ID";

/** The list of models has what follows this in the line of a model. */
inline constexpr std::string_view kModelFolder = "model/";

}  // namespace keyword

/** One word of a customer, system or identity file. */
struct ChainKeyword {
    FileFormat file;
    std::string_view word;
    ValueType type;
    FileFormat names;                   /**< the format of the file that the value names */
    std::array<const char*, 2> readers; /**< as in KnownItem */
    const char* note = "";              /**< what else there is to know of the value */
};

/** All of them. */
inline constexpr ChainKeyword kChainKeywords[] = {
        {FileFormat::CUSTOMER,
         keyword::kCustomerId,
         ValueType::TEXT,
         FileFormat::NONE,
         {"getCustomerId"}},
        {FileFormat::CUSTOMER, keyword::kSystemFile, ValueType::PATH, FileFormat::SYSTEM, {}},
        {FileFormat::SYSTEM,
         keyword::kModel,
         ValueType::PATH,
         FileFormat::PROJECT,
         {"getProjectMaxIdx", "getProjectIniList"},
         "the index of the model follows the word, a decimal number from 1 on"},
        {FileFormat::PROJECT_ID,
         keyword::kProjectId,
         ValueType::INTEGER,
         FileFormat::NONE,
         {"getProjectId", "setProjectId"},
         "the index of the model"},
        {FileFormat::BOARD_ID,
         keyword::kBoardId,
         ValueType::PATH,
         FileFormat::PROJECT,
         {},
         "its items replace those of the model; exactly `DEFAULT_BOARD_ID` for no board file"},
        {FileFormat::COUNTRY_ID,
         kCountryIdKeyword,
         ValueType::INTEGER,
         FileFormat::NONE,
         {"setCountryId"},
         "a country"},
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
