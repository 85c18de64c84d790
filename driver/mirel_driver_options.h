#pragma once

#include "common/mirel_string.h"

/// What the command line asks for. A later occurrence of an option replaces the earlier one.
struct RunSettings {
  mirel_string host = "";
  mirel_string database = "";
  mirel_string outfile = "";
  mirel_string email = "";
  mirel_string name = "";
  mirel_string company = "";
  mirel_string country = "";
  mirel_string telephone = "";
  mirel_string address = "";
  mirel_string icn = "";
  unsigned long port = 8081;
  bool send = false;
  bool support = false;  ///< without it nothing is collected
};

/// Reads the command line into `*settings`. Unknown options are told on standard output and skipped.
/// False when there was no option at all.
bool parseOptions(int argc, char** argv, RunSettings* settings);
