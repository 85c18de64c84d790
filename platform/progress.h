#pragma once
/// A sign of life for whoever watches a long run on a terminal.
///
/// This family is the collector's own, not the product's, and the only one that a build may do without: then
/// there is no such sign. Nothing is ever written but to a standard error that is a terminal.

extern "C" {

/// The run now works on this: the key of a member, or another short text.
__attribute__((weak)) void progressShow(const char* work);

/// Nothing is going on, or somebody else is about to write to the terminal. What was shown is gone.
__attribute__((weak)) void progressHide();

}  // extern "C"
