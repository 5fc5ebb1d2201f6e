#include "platform/env/HUTFileWriteStream.h"

#include "platform/env/HUTFile.h"
#include "platform/env/HUTPathUtils.h"

void HUTFileWriteStream::open(const std::string& path, const std::string& extension, int mode) {
    path_ = path;
    if (!extension.empty() && HUTPathUtils::extension(path).empty())
        path_ += extension;
    mode_ = mode;
    text_.clear();
}

void HUTFileWriteStream::close() {
    if (mode_ == append)
        HUTFile::append(path_, text_);
    else
        HUTFile::write_atomically(path_, text_);
    text_.clear();
}

std::string HUTFileWriteStream::getCanonicalFilePath() const {
    return HUTFile::getCanonicalName(path_);
}
