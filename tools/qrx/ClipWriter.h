#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "qrx/Output.h"
#include "volumes/FileMatcher.h"

namespace qrx::tool {

/// Writes clips to standard output in one format, in the order in which they come.
class ClipWriter {
public:
    virtual ~ClipWriter() = default;

    virtual void add(const PathDictionary& clip) = 0;
    /// After the last clip of a scan that ran to its end. A format whose text is only of use as a
    /// whole writes all of it here, so that an interrupted scan leaves no half document.
    virtual void finish() = 0;
};

struct TableShape {
    /// Columns of the terminal; paths that do not fit lose their middle. 0: paths of any length.
    std::size_t columns = 0;
    /// Columns of the longest layout title.
    std::size_t titleColumns = 0;
    /// Somebody watches the rows come.
    bool flushesEachRow = false;
};

/// LAYOUT, QT, PATH in columns; every path on one line, safe to show.
[[nodiscard]] std::unique_ptr<ClipWriter> makeClipTable(Output& output, const TableShape& shape);
/// One array of objects.
[[nodiscard]] std::unique_ptr<ClipWriter> makeClipJson(Output& output);
/// One object a line, handed over line by line.
[[nodiscard]] std::unique_ptr<ClipWriter> makeClipNdjson(Output& output);
/// RFC 4180 with a header line: filePath,volumeTitle,qt,filePathBytes. A path that is not UTF-8 or
/// that holds control characters leaves filePath empty and stands in filePathBytes, in base64; so
/// a record never takes more than one line.
[[nodiscard]] std::unique_ptr<ClipWriter> makeClipCsv(Output& output);

}  // namespace qrx::tool
