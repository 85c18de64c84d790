Lines stand below each other, whatever documents hold; what is not whole has its place, and makes the status 1.

  $ cd "$TARN_FIXTURES"
  $ tarn status sample.json postgresql.json alone.json
  whole   71 of  82 answered  SAMPLE       db1  2026-11-21  SQLite 3.40.1     strict, names repeat  sample.json
  whole   66 of  82 answered  SHOP         db2  2026-11-21  PostgreSQL 15.18  strict, names repeat  postgresql.json
  whole   31 of  47 answered  no database  db1  -           -                 strict                alone.json
  $ tarn status cut.json damaged.json - <binary.json
  cut       16 of  20 answered  SAMPLE       -  2026-11-21            SQLite 3.40.1     not strict  cut.json:53:31: cut in /databaseInfo/0/bufferpools/0: ends inside an object
  damaged    7 of  14 answered  -            -  2026-11-21            PostgreSQL 15.18  not strict  damaged.json:20:16: damaged in /databaseInfo/0/seed: has a NUL byte in a string
  whole      7 of   7 answered  no database  -  2026-11-21T19:52:20Z  -                 not strict  -
  [1]
  $ tarn status -v hostile.json | grep -cP '[\x00-\x08\x0b-\x1f\x7f]'
  0
  [1]
  $ tarn status missing.json sample.json | grep -c whole
  tarn: missing.json: No such file or directory
  1
  $ tarn status missing.json
  tarn: missing.json: No such file or directory
  [2]

What counts as asked, what as silent, what is foreign: a document, and what --json says of it.

  $ say() { printf "$1" | tarn status --json | jq -c '[.state, .asked, .answered, .silent, .repeated, .strict]'; }
  $ say '{"a": "", "b": "null", "c": "NULL", "d": [], "e": {}, "f": "x"}'
  ["whole",6,2,["/a","/b","/d","/e"],[],true]
  $ say '{"a": [{"x": "", "y": "1"}, "null", []]}'
  ["whole",1,1,[],[],true]
  $ say '{"a": [{"x": ""}, {"x": "", "y": []}], "b": ""}'
  ["whole",4,0,["/a/0/x","/a/1/x","/a/1/y","/b"],[],true]
  $ say '{"a": [{"x": "", "y": 1}, {}]}'
  ["whole",1,0,["/a/0/x"],[],true]
  $ say '{"databaseInfo": [{"name": "A", "size": "null"}], "platformInfo": {"x/y~": ""}}'
  ["whole",3,1,["/databaseInfo/0/size","/platformInfo/x~1y~0"],[],true]
  $ say '{"a": "1", "a": {"b": "", "b": ""}, "a": "3"}'
  ["whole",4,2,["/a#2/b","/a#2/b#2"],["/a#2","/a#2/b#2","/a#3"],true]
  $ say '{"a": 1, "b": null, "c": true}'
  ["foreign",0,0,[],[],true]
  $ say '[{"a": "1"}]'
  ["foreign",1,1,[],[],true]
  $ say '{"a": {"b": 1}}'
  ["whole",0,0,[],[],true]
  $ say '{"a": "\t"}'
  ["whole",1,1,[],[],false]
  $ say '\357\273\277{"a": "x"}'
  ["whole",1,1,[],[],false]
  $ say '{"a": "x", "b": [{"c": ""'
  ["cut",2,2,[],[],false]
  $ say ''
  ["cut",0,0,[],[],false]

A folder stands for the documents below it; facts of one's own can tell what a document is.

  $ mkdir "$CRAMTMP/store" && cp alone.json "$CRAMTMP/store/b.json" && cp binary.json "$CRAMTMP/store/a.json"
  $ printf '%s\n' /host '  title: Host' '  meaning: The host.' '  role: host' >"$CRAMTMP/facts"
  $ cd "$CRAMTMP" && tarn status --facts facts store
  whole    7 of   7 answered  no database  db3  2026-11-21T19:52:20Z  -  not strict  store/a.json
  whole   31 of  47 answered  no database  db1  -                     -  strict      store/b.json
  $ echo '/a' >>facts && tarn status --facts facts store
  tarn: facts:5:1: /a has no title
  [2]
