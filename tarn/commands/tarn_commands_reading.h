#pragma once
/// How commands read documents: with progress on a terminal, and troubles told in one form.

#include <functional>
#include <optional>
#include <string>

#include "tarn/document/tarn_document_reader.h"
#include "tarn/document/tarn_document_shown.h"
#include "tarn/document/tarn_document_source.h"
#include "tarn/document/tarn_document_survey.h"
#include "tarn/document/tarn_document_tree.h"

namespace tarn {

class Console;

/// Opens a file, "-" for standard input. False when that fails; the console was told.
bool openSource(Console& console, const std::string& file, Source::Passes passes, Source& source);

/// The next block, progress shown; empty at the end, or when reading failed, which the console was told.
std::string_view nextBlock(Console& console, const std::string& file, Source& source);

/// Hands the source on to the console's output up to an offset as far as the system can do that by itself.
void passOn(Console& console, const std::string& file, Source& source, std::uint64_t until);

/// Reads the source through the reader to its end. Nothing when reading failed; the console was told.
std::optional<Ending> readAll(Console& console, const std::string& file, Source& source, Reader& reader);

/// Which members of the document have a name that stood before in their object. Nothing when reading or
/// keeping that failed; the console was told. The source stands at its end then, and needs several passes.
std::optional<Repeats> surveyRepeats(Console& console, const std::string& file, Source& source);

/// Reads the source with repeated names told apart, in memory that does not grow with it: hands `pass` a path
/// for its reader, and when there are more names at once than may be remembered, a second one whose numbers
/// are known beforehand, the source rewound. A pass reads by `readNumbered`.
enum class PassEnd { done, failed, tooManyNames };
PassEnd readNumbered(Console& console, const std::string& file, Source& source, Reader& reader,
                     const Path& path);
bool numberedPass(Console& console, const std::string& file, Source& source,
                  const std::function<PassEnd(Path&)>& pass);

/// The bytes of a whole file. Nothing when it cannot be read; the console was told.
std::optional<std::string> readText(Console& console, const std::string& file);

/// A whole document in memory. Nothing when it cannot be read; the console was told. A document that is not
/// whole is no trouble here: the tree's ending tells.
std::optional<Tree> readTree(Console& console, const std::string& file);

/// What is wrong with a document that is not whole: "cut in /databaseInfo/0/name: ends inside a text".
Shown troubleOf(const Ending& ending);

}  // namespace tarn
