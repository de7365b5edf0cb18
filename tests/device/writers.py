"""How the product's sources change files, and where these files are on a set."""

import re

# Sources that change files, with the files and what they do to them. Every other source only reads.
READ, REWRITE = {"open", "read"}, {"open", "read", "write"}
MAKE = REWRITE | {"create", "setattr"}
WRITERS = {
    # For the others.
    "common/SaveFile.cpp": {},
    "tvconfigs/FileConfigEditor.cpp": {
        "/tvconfigs/tv.config": ("mlkconfigs_features_file", REWRITE),
        "/tvconfigs/tv/tv_eu.config": ("mlkconfigs_features_file", REWRITE),
    },
    # If one of these two is missing, it is made from a ".new" file.
    "projectconfigs/ProjectID.cpp": {
        "/impdata/project_id.bin": ("mlkconfigs_project_id_file", MAKE | {"unlink", "rename"}),
        "/impdata/project_id.bin.new": ("mlkconfigs_project_id_file", MAKE | {"unlink", "rename"}),
    },
    "regional/TvSysMapCfgHolderCountryId.cpp": {
        "/tvdata/tvsysmap/country_id.bin": ("mlkconfigs_country_file", MAKE | {"unlink", "rename"}),
        "/tvdata/tvsysmap/country_id.bin.new": ("mlkconfigs_country_file", MAKE | {"unlink", "rename"}),
    },
}
WRITING = re.compile(
    r"\b(?:O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|O_APPEND|ofstream|fstream|WriteStringToFile)\b"
    r"|(?<!std::)\b(?:fopen|freopen|creat|mkdir|mkdirat|mkstemp|rename|renameat|unlink|unlinkat|remove|rmdir"
    r"|symlink|link|chmod|fchmod|chown|fchown|truncate|utimes|mknod|mount|setxattr|system|popen|exec[lv]\w*|fork)\("
)
# Names of files in the product, and their places on a set.
PLACES = {
    "/tvconfigs": "/tvconfigs",
    "/tvdata": "/tvdata",
    "/impdata": "/impdata",
    "/customer.ini": "/tvconfigs/customer.ini",
    "/tv.config": "/tvconfigs/tv.config",
    "/audio/": "/tvconfigs/audio/audio_skerry.ini",
    "/freqtables": "/tvconfigs/freqtables",
    "/dtv/": "/tvconfigs/freqtables/dtv/freqtable_eu",
    "/atv/": "/tvconfigs/freqtables/atv/freqtable_atv_bg",
    "/country_freq_map.xml": "/tvconfigs/freqtables/country_freq_map.xml",
    "/tvsysmap": "/tvdata/tvsysmap",
    "/country_id.bin": "/tvdata/tvsysmap/country_id.bin",
    "/project_id.bin": "/impdata/project_id.bin",
    "/board_id.bin": "/impdata/board_id.bin",
}
