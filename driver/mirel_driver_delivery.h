#pragma once
/// Where the template comes from and where the result goes.

#include "common/mirel_string.h"

/// The template's text: the embedded default or, with `send`, what the collection server answers to a GET of
/// "/config", whatever that is. To that end it sets the socket layer up, for `writeResult` to end it.
mirel_string readConfig(bool send, const mirel_string& host, unsigned long port);

/// With `send`, posts the result to "/tarn", prints the response and ends the socket layer; otherwise prints
/// the result if asked to, and writes it to `outfile` unless that is empty; a lost one counts as a file that
/// cannot be written. All texts go to standard output.
void writeResult(const mirel_string& result, bool send, const mirel_string& host, unsigned long port,
                 bool print, const mirel_string& outfile);

/// Writes exactly the text to a file, created or truncated with permissions 0644. Returns 0 when the file
/// was opened and closed well, otherwise the platform's code; a failed write alone is told on standard error.
unsigned int writeToFile(const mirel_string& path, const mirel_string& text);
