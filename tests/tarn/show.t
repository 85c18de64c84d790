The whole of a small document: what it is, values behind their titles, parts as bars, blocks, what did not answer.

  $ plain() { tarn show "$@" | sed 's/█/#/g; s/░/./g; s/…/.../g'; }
  $ cat >small.json <<'END'
  > {"platformInfo": {"osSystemName": "db1", "physMemTotal": "4096", "physMemFree": "1024", "swapMemFree": "null",
  >   "networkInfoRaw": "lo:\n  127.0.0.1\n"}, "tarn_collection_time": "2026-11-21T01:02:03Z\n", "own": "1",
  >  "own": "a line that is longer than the terminal is wide, which nobody would want to read to its end",
  >  "databaseInfo": [{"name": "A", "bufferpools": [{"BPNAME": "x", "NPAGES": "7", "PAGESIZE": "4096"},
  >   {"PAGESIZE": "12", "BPNAME": "long"}], "count": [{"TARN_OBJECTIFY": "kind", "KIND": "p", "N": "1"},
  >   {"TARN_OBJECTIFY": "kind", "KIND": "", "N": "3"}]}], "customerInfo": {"name": "", "address": ""},
  >  "same": [{"A": "1"}, {"A": "1"}, {"A": "2"}], "mixed": ["text", {"B": "1", "C": {"D": "2"}}]}
  > END
  $ plain small.json
  Host db1, database A, 2026-11-21T01:02:03Z
  small.json: 13 of 16 members answered, 716 bytes
  
  Collected  2026-11-21T01:02:03Z
  own        1
  own        a line that is longer than the terminal is wide, which nobody would ...
  
  Platform  /platformInfo
    Host name    db1
    Memory       4 KiB (4096)
    Memory free  1 KiB (1024)  #####...............  25 %
  
    Network  /platformInfo/networkInfoRaw
      lo:
        127.0.0.1
  
  Database A  /databaseInfo/0
    Name  A
  
    Buffer pools  /databaseInfo/0/bufferpools
      Pool  Pages     Page size
      x         7  4 KiB (4096)
      long                   12
  
    count  /databaseInfo/0/count
      (empty)  3   75 %  ##############################
      p        1   25 %  ##########
  
  Customer  /customerInfo
    Nothing answered.
  
  same  /same
    A
    1  (2 times)
    2
  
  mixed  /mixed
    text
  
    /mixed/1
      B  1
  
      C  /mixed/1/C
        D  2
  
  Did not answer: 3 of 16
    The machine does not tell.
      /platformInfo/swapMemFree
    The option was not given.
      /customerInfo/name, /customerInfo/address
  
  Not all is shown: with --all it is, or one member whole with its POINTER behind
  the file.

Long tables and listings say what is left; wide ones, which columns do not fit; one member is shown whole.

  $ jq -nc '{list: ([range(30) | "l\(.)"] | join("\n")), rows: [range(25) | {a: "\(.)"}],
  >   wide: [[range(30) | {key: "column\(.)", value: "v"}] | from_entries]}' >long.json
  $ plain long.json | grep '\.\.\.'
    ... 18 more lines
    ... 5 more rows
    ... 22 more columns
  $ plain --all long.json | grep -c '\.\.\.\|Not all'
  0
  [1]
  $ plain long.json /list | tail -n 1
  l29
  $ tarn show long.json /none
  tarn: long.json: has no /none
  [2]

Nothing of a hostile document gets out as a control sequence; what is not whole is shown as far as it is.

  $ cd "$TARN_FIXTURES"
  $ for file in hostile binary; do tarn show --all $file.json; done | grep -cP '[\x00-\x09\x0b-\x1f\x7f]'
  0
  [1]
  $ tarn show cut.json | sed -n '2,3p'
  cut.json:53:31: cut in /databaseInfo/0/bufferpools/0: ends inside an object
  What stands before: 16 of 20 members answered, 2.8 KiB (2830)
  $ tarn show damaged.json >/dev/null
  [1]
  $ echo '[[1, "x"], null]' | tarn show
  -
  -: 0 of 0 members answered, 17 bytes
  
  /0
    1
    x
  null
