#pragma once

#include <string_view>

#include "common/FileFormat.h"
#include "common/ValueType.h"

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
    FileFormat names; /**< the format of the file that the value names */
};

/** All of them. */
inline constexpr ChainKeyword kChainKeywords[] = {
        {FileFormat::CUSTOMER, keyword::kCustomerId, ValueType::TEXT, FileFormat::NONE},
        {FileFormat::CUSTOMER, keyword::kSystemFile, ValueType::PATH, FileFormat::SYSTEM},
        {FileFormat::SYSTEM, keyword::kModel, ValueType::PATH, FileFormat::PROJECT},
        {FileFormat::PROJECT_ID, keyword::kProjectId, ValueType::INTEGER, FileFormat::NONE},
        {FileFormat::BOARD_ID, keyword::kBoardId, ValueType::PATH, FileFormat::PROJECT},
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
