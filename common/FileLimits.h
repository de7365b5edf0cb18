#pragma once

#include <cstddef>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/*
 * Limits of file sizes, in bytes. A configured path can lead to an endless file of the kernel or to
 * a sparse one of many gigabytes. Each limit is far above the size of real files, yet reading that
 * much takes only a moment. A larger file is not used at all; the log names the file and the limit.
 */

/**
 * Project id, board id and saved country, each a line of text. Of a larger project id the part up
 * to the limit is used.
 */
constexpr size_t kMostIdentityBytes = size_t{64} << 10;

/** Customer, system, project and board files. */
constexpr size_t kMostProjectBytes = size_t{64} << 20;

/** Lists, channel plans, maps and auxiliary files; some are held in memory completely. */
constexpr size_t kMostListBytes = size_t{16} << 20;

/** A TV feature file. A larger one is not used; clients may name any file to be read. */
constexpr size_t kMostFeatureBytes = size_t{1} << 22;

/** The number of entries of a TV feature file. A file with more is not used. */
constexpr size_t kMostFeatures = size_t{1} << 16;

/*
 * Limits of lines and texts: the size of a buffer, which has one byte more than the longest line or
 * text in it. The texts of an AVR and the name made of them may fill their buffers.
 * kFileFormats of FileFormat.h has the longest line of each format.
 */

/** A line of a customer or system file, a list, an auxiliary file, a saved board or country. */
constexpr size_t kListBufferSize = 256;

/** A line of a project or board file. */
constexpr size_t kProjectBufferSize = 1024;

/** A line of a TV feature file. A longer one ends the file there. */
constexpr size_t kFeatureLineSize = 1024;

/** The path of a TV feature file. The rest of a longer one does not count. */
constexpr size_t kFeaturePathSize = 128;

/** The name of an auxiliary file, without its folder. A file with a longer one is not used. */
constexpr size_t kFileNameSize = 128;

/** The path of the audio file of an AVR, audio/video receiver. */
constexpr size_t kAvrPathSize = 128;

/**
 * The longest line of a channel plan, without its line feed; the limit itself, not the size of a
 * buffer. The rest of a longer line counts as a line of its own.
 */
constexpr size_t kPlanPieceSize = 49;

/**
 * Limits of an XML file. TinyXML-2 compares an attribute with all preceding ones of its element,
 * and searches the rest of a text for the end of a character reference. Both take quadratic time;
 * within these limits a file of the largest size loads in seconds.
 */
constexpr size_t kMostAttributes = 256;  /**< of one element */
constexpr size_t kMostReferences = 4096; /**< character references of a file */

/** The reason to log for a file that exceeds its limit. */
inline std::string largerThan(size_t limit) {
    return "larger than " + std::to_string(limit) + " bytes";
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
