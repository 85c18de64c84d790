#pragma once
/// What an operator sees beside the result: the line of progress, in builds that have one, and complaints.

/// The run now works on this: the key of a member, or another short text. See platform/progress.h.
void showWork(const char* work);
/// Nothing is going on, or something is about to be printed.
void hideWork();

/// One line on standard error.
void complain(const char* line);
/// Such a line if anything that was printed on standard output could not be written.
void complainOfLostOutput();
