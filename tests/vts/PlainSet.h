#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "projectconfigs/testing/PlainChain.h"
#include "regional/testing/PlainRegional.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

namespace plain = implementation::plain;

/** An auxiliary file: its items and its name, which is empty if the service does not use the file.
 */
struct AuxiliaryFile {
    std::string name;
    plain::Items items;

    std::string value(const plain::Items::key_type& key) const;
};

/**
 * The state of a service that starts on the partitions and properties of this set, read by the
 * plain models of the formats. TvPartitionPath gives the partitions. Keeps no file open. For one
 * thread.
 */
class PlainSet {
  public:
    PlainSet();

    std::string value(const char* category, const char* key) const;
    /** The items of the set: those of its project and board, with those of its country. */
    const plain::Items& items() const { return chain.items(); }

    /** Reads the project files for another index, as a setter of the index does. */
    void selectProject(int32_t index);
    /** The same for the selected index, as a setter does for an index that does not exist. */
    void readProjectAgain();
    /** Puts the items of a country in; -1 is the saved country. */
    void applyCountry(int32_t country);
    /** The saved country; -1 if no country is saved. */
    int32_t savedCountry() const;

    /** Every key that an audio file has. */
    std::vector<plain::Items::key_type> audioKeys() const;
    /** The items of an AVR's file, which is in the folder of the default AVR's file. */
    AuxiliaryFile avrFile(const std::string& name) const;
    /** Vendor id and OSD name of each AVR that has a file there. */
    std::vector<std::pair<std::string, std::string>> avrs() const;
    /** The sum of the delays of a key in the audio files and in that of an AVR. */
    int32_t audioDelay(const plain::Items::key_type& key, bool arc, const AuxiliaryFile& avr) const;

    /** The text that the service dumps if it has loaded these files of AVRs too. */
    std::string dump(const std::vector<std::string>& avrNames) const;
    /** Names of the files that a dump has besides those of the start. */
    std::vector<std::string> furtherAudioFiles(const std::string& dump) const;

    /** Path of the TV feature file that a start reads. */
    std::string tvConfigPath() const;

    std::string projectIdPath() const { return impdata + "/project_id.bin"; }
    std::string countryIdPath() const { return tvdata + "/tvsysmap/country_id.bin"; }

    const std::string tvconfigs;
    const std::string tvdata;
    const std::string impdata;
    int32_t projectId = 0;
    plain::Chain chain;
    AuxiliaryFile karaoke;
    AuxiliaryFile globalKeys;
    AuxiliaryFile ddcci;

  private:
    std::string loadAudioFile(const std::string& path);
    /** Folder of the default AVR's file, with a slash at its end; empty without such a file. */
    std::string avrFolder() const;
    std::string audioValue(const std::string& name, const plain::Items::key_type& key) const;
    AuxiliaryFile namedFile(const char* category, const char* key) const;

    std::string mBoardId;
    std::string mPanelName; /**< these four are names of audio files */
    std::string mICName;
    std::string mAvrDefaultName;
    std::string mHardwareName;
    std::map<std::string, plain::Items> mAudioFiles; /**< by their names, as a dump has them */
    plain::Names mSystemCountries = plain::countries();
};

/** The number at the start of a text, as the service reads numbers. */
int32_t numberOf(const std::string& text);

/** A system property; empty if it is not set. */
std::string propertyOf(const std::string& key);

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
