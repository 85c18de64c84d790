#pragma once

#include "common/mirel_string.h"

/// What the command line asks for. A later occurrence of an option replaces the earlier one.
struct RunSettings {
  /// What was not asked for needs no memory.
  static mirel_string none() { return mirel_string::within("", 0); }

  mirel_string host = none();
  mirel_string database = none();
  mirel_string outfile = none();
  mirel_string email = none();
  mirel_string name = none();
  mirel_string company = none();
  mirel_string country = none();
  mirel_string telephone = none();
  mirel_string address = none();
  mirel_string icn = none();
  unsigned long port = 8081;
  bool send = false;
  bool support = false;  ///< without it nothing is collected

  /// Whether for want of memory nobody knows whom to ask for the template.
  bool lost() const { return send && host.lost(); }
};

/// Reads the command line into `*settings`. Unknown options are told on standard output and skipped.
/// False when there was no option at all.
bool parseOptions(int argc, char** argv, RunSettings* settings);
