The built-in template has one slip, on purpose; that of the collection server no other.

  $ tarn template >default.json
  $ tarn check default.json
  tarn: default.json:36:6: warning: "minRowCompressionRatio" stands at 35:6 already: the result has both, and most readers see one; give each member a name of its own [repeated-name]
  [1]
  $ tarn check --allow repeated-name default.json "$TESTDIR/../../deploy/collection-server/template.json"

Several templates, one of them missing; the others are checked all the same.

  $ printf '{"é": "é", "os": "Native os name"}' >one.json
  $ printf '["\033[2J\xe2\x80\xae": "a"]' >hostile.json
  $ tarn check one.json missing.json hostile.json
  tarn: one.json:1:21: warning: "Native" is no command word; write "native" [case]
  tarn: missing.json: No such file or directory
  tarn: hostile.json:1:11: error: mirel ends with: Expecting one of: (",", "]"); Actual: ":" on line 1 column 11; a comma is missing before this [syntax]
  [2]

For programs.

  $ tarn check --json --allow case - <one.json
  $ printf '{"a": 1}' | tarn check --json -
  {"file": "-", "line": 1, "column": 7, "level": "error", "rule": "syntax", "text": "mirel ends with: Expecting one of: (\"{\", \"[\", \"string\"); Actual: \":\" on line 1 column 7", "hint": "numbers are not read: write \"1\""}
  [1]
  $ tarn check --allow nonsense - </dev/null
  tarn: --allow: nonsense not in *, see tarn --help (glob)
  [2]

Ten megabytes on one line, of a million members or of backslashes, do not take long.

  $ perl -e 'print "{", join(",", map { "\"$_\":\"Native os name\"" } 1..300000), "}"' >large.json
  $ timeout 60 tarn check large.json 2>&1 | tail -n 1
  tarn: large.json:1:7688881: warning: "Native" is no command word; write "native" [case]
  $ perl -e 'print "{\"a\": \"execute ", "\\" x 9999998, "b\"}"' >backslashes.json
  $ timeout 60 tarn check backslashes.json
  tarn: backslashes.json:1:16: warning: 9999998 backslashes in a row do not come out as half of them; let a shell command print them: printf '\134' [escape]
  [1]
