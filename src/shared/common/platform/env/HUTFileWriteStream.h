#pragma once

#include <string>
#include <string_view>

/// A report on its way into a file. Text is gathered in memory and reaches the file whole, at close(), or not
/// at all: a stream that is destroyed before leaves the file as it was. Not for use by several threads at
/// once.
///
///     HUTFileWriteStream stream;
///     stream.open(path, "", HUTFileWriteStream::overwrite);
///     stream.write(text);
///     stream.close();
class HUTFileWriteStream {
public:
    enum Mode {
        overwrite = 20, ///< the file then holds the report alone
        append = 21,    ///< the report is added at the end of what is there
    };

    /// Takes `path` for the file, with `extension` added if that is not empty and the path has none.
    void open(const std::string& path, const std::string& extension, int mode);
    void write(std::string_view text) { text_ += text; }
    /// Writes the file. Throws std::system_error, whose text names the path; the file is then as it was.
    void close();

    /// The file's absolute path without ".", ".." and symbolic links.
    std::string getCanonicalFilePath() const;

private:
    std::string path_;
    std::string text_;
    int mode_ = overwrite;
};
