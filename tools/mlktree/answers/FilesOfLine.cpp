#include "tools/mlktree/answers/FilesOfLine.h"

#include "tools/mlktree/FileReading.h"

namespace mlk::tree {

const FileLines& FilesOfLine::as(const std::string& path, FileFormat format) {
    const FileLines* const known = mLine.find(path);
    if (known != nullptr && known->format() == format) {
        return *known;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    std::unique_ptr<const FileLines>& file = mFiles[{path, format}];
    if (file == nullptr) {
        file = readFile(mLine.tree(), path, format);
    }
    return *file;
}

const TvSystemFiles& FilesOfLine::tvSystems(const std::string& path) {
    for (const TvSystemFiles& files : mLine.tvSystems()) {
        if (files.file->path() == path) {
            return files;
        }
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    TvSystemFiles& files = mTvSystems[path];
    if (files.systems == nullptr) {
        files.systems = std::make_unique<TvSystems>(mLine.tree(), mLine.properties(), path);
        mOwned.push_back(files.systems->takeFile());
        files.file = mOwned.back().get();
        mOwned.push_back(files.systems->takeMap());
        files.map = mOwned.back().get();
    }
    return files;
}

const PlanFiles& FilesOfLine::plans(const std::string& path) {
    for (const PlanFiles& files : mLine.planFolders()) {
        if (files.folder->path() == path) {
            return files;
        }
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    PlanFiles& files = mPlans[path];
    if (files.folder == nullptr) {
        files.folder = std::make_unique<PlanFolder>(mLine.tree(), path);
        mOwned.push_back(files.folder->takeMap());
        files.map = mOwned.back().get();
    }
    return files;
}

std::string FilesOfLine::pathOf(std::string_view value) const {
    return mLine.tree().relative(mLine.tree().hostOfWritten(value));
}

}  // namespace mlk::tree
