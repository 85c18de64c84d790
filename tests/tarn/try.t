What the document does not say stands beside the answer.

  $ printf '[SHOP]\nDriver = SQLite3\nDatabase = shop.db\n' >odbc.ini
  $ export ODBCINI=$PWD/odbc.ini
  $ sqlite3 shop.db "create table c (name, city); insert into c values ('Ada Example', null), ('Bob', ' Ulm')"
  $ cat >shop.json <<'END'
  > {"all": "sql array select name, city from c", "long": "sql one select '+' || hex(zeroblob(64)) as x",
  >  "lost": "sql value m select 1 as \"m\", 2 as k", "none": "sql value name select name from c where city = 'x'",
  >  "failing": "sql one select nope", "plain": "two words", "list": ["execute echo"],
  >  "status": "execute echo out; echo err >&2; exit 3", "signal": "execute kill -9 $$",
  >  "file": "native readFile /nowhere", "item": "native os nmae"}
  > END
  $ tarn try -d SHOP shop.json -o result.json
  connect SHOP
    connected
  /all: sql array select name, city from c
    {"NAME": "Ada", "CITY": "NULL"}
    {"NAME": "Bob", "CITY": ""}
    - 2 rows
    - NAME is cut at its first blank in 1 row: it was "Ada Example"
    - CITY is NULL in 1 row
    - CITY is cut at its first blank in 1 row: it was " Ulm"
  /long: sql one select '+' || hex(zeroblob(64)) as x
    {"X": "\+0{126}"} (re)
    - X is cut at 127 bytes in 1 row: it was "\+0{128}" (re)
  /lost: sql value m select 1 as "m", 2 as k
    null
    - the column is looked for in upper case, and the query has it as "m"; take its quotes out of the query
    - no column M; there are: m, K
  /none: sql value name select name from c where city = 'x'
    null
    - no row
  /failing: sql one select nope
    {}
    ! [SQLite]no such column: nope (1)
  /status: execute echo out; echo err >&2; exit 3
    out
    ! status 3
    ! standard error: err
  /signal: execute kill -9 $$
    (empty)
    ! status 137
  /file: native readFile /nowhere
    (empty)
    - the file cannot be read: No such file or directory
  /item: native os nmae
    null
    - "os" knows no "nmae"; write "name"
  $ stat -c %a result.json
  600
  $ tarn try --json shop.json | tail -n 4 | sed 's/"seconds": [^,]*/"seconds": S/'
  {"pointer": "/status", "command": "execute echo out; echo err >&2; exit 3", "answer": "out\n", "seconds": S, "status": 3, "stderr": "err\n", "diagnostics": [], "notes": []}
  {"pointer": "/signal", "command": "execute kill -9 $$", "answer": "", "seconds": S, "status": 137, "stderr": "", "diagnostics": [], "notes": []}
  {"pointer": "/file", "command": "native readFile /nowhere", "answer": "", "seconds": S, "status": null, "stderr": null, "diagnostics": [], "notes": ["the file cannot be read: No such file or directory"]}
  {"pointer": "/item", "command": "native os nmae", "answer": "null", "seconds": S, "status": null, "stderr": null, "diagnostics": [], "notes": ["\"os\" knows no \"nmae\"; write \"name\""]}
  $ tarn try -d NOWHERE shop.json | sed -n '1,3p;/^\/none/,/connection/p'
  connect NOWHERE
    null
    ! [unixODBC][Driver Manager]Data source name not found and no default driver specified
  /none: sql value name select name from c where city = 'x'
    null
    - there is no connection
  $ tarn try shop.json -o ./shop.json >/dev/null
  tarn: ./shop.json: is the template
  [2]

An interrupt ends the command, and the run goes on; a second one ends the run.

  $ echo '{"a": "execute echo one; sleep 60.071 & sleep 60.071; echo lost", "b": "execute echo two"}' >hang.json
  $ timeout --foreground -s INT 1 tarn try hang.json -o hang.out
  /a: execute echo one; sleep 60.071 & sleep 60.071; echo lost* (glob)
    one
    ! status 137
    - ended by an interrupt
  /b: execute echo two
    two
  [124]
  $ cat hang.out
  {
    "a": "one\n",
    "b": "two\n"
  } (no-eol)
  $ echo '{"a": "execute sleep 60.071", "b": "execute echo two"}' >group.json
  $ bash -c 'set -m; tarn try group.json & sleep 1; kill -INT -- -$!; wait' 2>/dev/null
  /a: execute sleep 60.071* (glob)
    (empty)
    ! status 13[07] (re)
    - ended by an interrupt
  /b: execute echo two
    two
  $ echo '{"a": "execute sleep 61.071", "b": "execute sleep 62.071"}' >hang.json
  $ bash -c 'tarn try hang.json -o none.out & sleep 1; kill -INT $!; sleep 1; kill -INT $!; wait $!' 2>/dev/null
  /a: execute sleep 61.071* (glob)
    (empty)
    ! status 137
    - ended by an interrupt
  [130]
  $ test -e none.out || pgrep -f 'sleep 6[0-2][.]071$'
  [1]

A template is planned as it runs; one that is none has no plan.

  $ tarn plan -d SHOP shop.json --json | tail -n 2
  {"kind": "execute", "text": "kill -9 $$", "pointer": "/signal", "implied": false}
  {"kind": "read", "text": "/nowhere", "pointer": "/file", "implied": false}
  $ echo '{"a": 1}' | tarn plan -
  tarn: -:1:7: error: mirel ends with: Expecting one of: ("{", "[", "string"); Actual: ":" on line 1 column 7; numbers are not read: write "1" [syntax]
  [1]

What is repeated within repetitions takes no longer than what it is.

  $ perl -e 'print "{\"\$foreach table [t]\": " x 999, "{", join(",", map { "\"$_\": \"execute x\"" } 1..2000), "}", "}" x 999' >bomb.json
  $ timeout 60 tarn plan bomb.json | tail -n 1 | tail -c 19
  /0/t/0/t/0/2000: x
