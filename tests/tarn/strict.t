Documents come one behind the other; what is not whole is told, nothing of it is written, and the rest goes on.

  $ cd "$TARN_FIXTURES"
  $ printf '{"a": [1, 2' | tarn strict --lines hostile.json cut.json none.json . - damaged.json alone.json >"$CRAMTMP/out"
  tarn: cut.json:53:31: cut in /databaseInfo/0/bufferpools/0: ends inside an object
  tarn: none.json: No such file or directory
  tarn: .: Is a directory
  tarn: -:1:12: cut in /a/1: ends inside a value
  tarn: damaged.json:20:16: damaged in /databaseInfo/0/seed: has a NUL byte in a string
  [2]
  $ jq length "$CRAMTMP/out" | xargs
  [0-9]+ [0-9]+ (re)

Strict documents stay as they are, from a file, a pipe and a file that is read from its middle.

  $ tarn strict sample.json | cmp - sample.json
  $ cat sample.json | tarn strict | cmp - sample.json
  $ (head -c 1 >/dev/null; tarn strict) <<<"x$(cat sample.json)" | cmp - sample.json

Depth is bounded and told.

  $ nested() { head -c "$1" /dev/zero | tr '\0' '['; head -c "$1" /dev/zero | tr '\0' ']'; }
  $ nested 10000 | tarn strict | wc -c
  20001
  $ nested 10001 | tarn strict 2>&1 | sed 's, in /.*/0, in /...,'
  tarn: -:1:10001: damaged in /...: is nested deeper than 10,000

Places carry the numbers of repeated names, also where there are too many names to remember.

  $ printf '{"a": 1, "a": [tru' | tarn strict
  tarn: -:1:19: cut in /a#2/0: ends inside a value
  [1]
  $ many() { echo '{"a": ""'; seq 600000 | sed 's/.*/, "n&": ""/'; printf ', "n#2": "", "n": "", "a": {"n": ""}, "n": ""'; }
  $ (many; echo '}') | tarn strict --unique --lines | tail -c 46
  ":"","n#2":"","n":"","a#2":{"n":""},"n#3":""}
  $ (many; echo '}') | tarn status --json | jq -c .repeated
  ["/a#2","/n#3"]
  $ (many; printf ', "a": [tru') | tarn strict --unique
  tarn: -:600002:57: cut in /a#3/0: ends inside a value
  [1]
