#pragma once

/// The collection template of a run that downloads none: one JSON document on one line. Its keys are the
/// result's keys, their spelling included, and its values are commands; see mirel(1) for their grammar.
extern const char* const kDefaultTemplate;
