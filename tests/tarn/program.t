Wrong words are told in one line; help is not trouble.

  $ tarn
  tarn: A subcommand is required, see tarn --help
  [2]
  $ tarn template --bogus
  tarn: The following argument was not expected: --bogus, see tarn --help
  [2]
  $ tarn template --help | head -n 2
  Print the built-in template, ready to be changed
  Usage: tarn template [OPTIONS]

Lost output is told.

  $ tarn template >/dev/full
  tarn: standard output: No space left on device
  [2]

The built-in template, laid out, is the one that runs.

  $ tarn template | head -n 3
  {
    "tarn_version": "1.1",
    "tarn_collection_time": "sql value time select CURRENT_TIMESTAMP as time from syszent.sysdummy1",
