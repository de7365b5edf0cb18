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

/** An auxiliary file: its name, empty where the service looks nothing up in it, and its items. */
struct AuxiliaryFile {
    std::string name;
    plain::Items items;

    std::string value(const plain::Items::key_type& key) const;
};

/**
 * What the partitions and properties of this set say to a service that starts on them, read by the
 * plain models of the formats. The partitions are where TvPartitionPath has them. Nothing is kept
 * open; one thread.
 */
class PlainSet {
  public:
    PlainSet();

    std::string value(const char* category, const char* key) const;
    /** The items of the set: of its project and board, with those of its country put in. */
    const plain::Items& items() const { return chain.items(); }

    /** Reads the project files for another index, as a setter of the index has them read. */
    void selectProject(int32_t index);
    /** The same for the index that is selected: after one that the system file does not have. */
    void readProjectAgain();
    /** Puts the items of a country in; -1 is the saved one. */
    void applyCountry(int32_t country);
    /** The country that is saved; -1 without one. */
    int32_t savedCountry() const;

    /** Every key that an audio file has. */
    std::vector<plain::Items::key_type> audioKeys() const;
    /** What the file of an AVR says, which lies beside that of the default AVR. */
    AuxiliaryFile avrFile(const std::string& name) const;
    /** Vendor id and OSD name of each AVR that has a file there. */
    std::vector<std::pair<std::string, std::string>> avrs() const;
    /** Sum of the delays that the audio files and that of an AVR give for a key. */
    int32_t audioDelay(const plain::Items::key_type& key, bool arc, const AuxiliaryFile& avr) const;

    /** What the service writes into a dump when it has loaded these files of AVRs too. */
    std::string dump(const std::vector<std::string>& avrNames) const;
    /** Names of the files that a dump has besides those of the start. */
    std::vector<std::string> furtherAudioFiles(const std::string& dump) const;

    /** Path of the TV configuration file that a start reads. */
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
    /** Folder of the default AVR's file, with a slash at its end; empty without one. */
    std::string avrFolder() const;
    std::string audioValue(const std::string& name, const plain::Items::key_type& key) const;
    AuxiliaryFile namedFile(const char* category, const char* key) const;

    std::string mBoardId;
    std::string mPanelName;  ///< these four are names of audio files
    std::string mICName;
    std::string mAvrDefaultName;
    std::string mHardwareName;
    std::map<std::string, plain::Items> mAudioFiles;  ///< by their names, as a dump has them
    plain::Names mSystemCountries = plain::countries();
};

/** The number at the start of a text, as the service reads numbers. */
int32_t numberOf(const std::string& text);

/** A system property; empty without one. */
std::string propertyOf(const std::string& key);

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
