#pragma once

/// One whole run of the collector, from the command line to the delivered result. Returns the exit status,
/// 0 however the run went; only a template with a syntax error ends the process from within, with 255.
///
/// Want of memory costs what it hits, and a line on standard error, "out of memory", tells each loss:
/// - A member of the template, the facts below a "$foreach" among them, becomes the empty text (a query's: no
///   value). Nothing is run whose own text was lost. The walk goes on with the next member.
/// - An option counts as not given, the result file's as a file that cannot be written.
/// - Facts of the host that are taken at the start are not known.
/// - Nothing is delivered only where the template (with `-s` also the server's name), its tree, a key of the
///   tree, the result's text or the request that carries it cannot be had.
int run(int argc, char** argv);
