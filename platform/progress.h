#pragma once
/// A sign of life for whoever watches a long run on a terminal.
///
/// This family is the collector's own, not the product's: a site's build may leave both functions empty.
/// Nothing is ever written but to a standard error that is a terminal.

extern "C" {

/// The run now works on this: the key of a member, or another short text.
void progressShow(const char* work);

/// Nothing is going on, or somebody else is about to write to the terminal. What was shown is gone.
void progressHide();

}  // extern "C"
