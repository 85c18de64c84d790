#pragma once
/// How commands read documents: with progress on a terminal, and troubles told in one form.

#include <optional>
#include <string>

#include "tarn/document/tarn_document_reader.h"
#include "tarn/document/tarn_document_shown.h"
#include "tarn/document/tarn_document_source.h"
#include "tarn/document/tarn_document_tree.h"

namespace tarn {

class Console;

/// Opens a file, "-" for standard input. False when that fails; the console was told.
bool openSource(Console& console, const std::string& file, Source::Passes passes, Source& source);

/// The next block, progress shown; empty at the end, or when reading failed, which the console was told.
std::string_view nextBlock(Console& console, const std::string& file, Source& source);

/// Reads the source through the reader to its end. Nothing when reading failed; the console was told.
std::optional<Ending> readAll(Console& console, const std::string& file, Source& source, Reader& reader);

/// The bytes of a whole file. Nothing when it cannot be read; the console was told.
std::optional<std::string> readText(Console& console, const std::string& file);

/// A whole document in memory. Nothing when it cannot be read; the console was told. A document that is not
/// whole is no trouble here: the tree's ending tells.
std::optional<Tree> readTree(Console& console, const std::string& file);

/// What is wrong with a document that is not whole: "cut in /databaseInfo/0/name: ends inside a text".
Shown troubleOf(const Ending& ending);

}  // namespace tarn
