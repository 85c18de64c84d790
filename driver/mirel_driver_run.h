#pragma once

/// One whole run of the collector, from the command line to the delivered result. Returns the exit status,
/// 0 however the run went; only a template with a syntax error ends the process from within, with 255.
///
/// When memory runs out, "out of memory" on standard error tells what was lost: a line for each member that
/// the result goes without, or one in place of the whole result.
int run(int argc, char** argv);
