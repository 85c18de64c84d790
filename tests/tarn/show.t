The whole of a small document: what it is, values behind their titles, parts as bars, blocks, what did not answer.

  $ plain() { tarn show "$@" | sed 's/█/#/g; s/░/./g; s/…/.../g; s/[0-9]* days ago$/days ago/'; }
  $ cat >small.json <<'END'
  > {"platformInfo": {"osSystemName": "db1", "physMemTotal": "4096", "physMemFree": "1024", "swapMemFree": "null",
  >   "diskInfoTotal": "1000", "diskInfoFree": "99",
  >   "networkInfoRaw": "lo:\n  127.0.0.1\n"}, "tarn_collection_time": "2016-11-21T01:02:03Z\n", "own": "1",
  >  "own": "a line that is longer than the terminal is wide, which somebody might want to read to its end",
  >  "instanceInfo": {"numberOfDatabases": "1.23456"},
  >  "databaseInfo": [{"name": "A", "bufferpools": [{"BPNAME": "x", "NPAGES": "7", "PAGESIZE": "4096"},
  >   {"PAGESIZE": "12", "BPNAME": "長い", "NPAGES": "NULL"}], "count": [{"TARN_OBJECTIFY": "kind", "KIND": "p", "N": "1"},
  >   {"TARN_OBJECTIFY": "kind", "KIND": "", "N": "3"}]}], "customerInfo": {"name": "", "address": ""},
  >  "same": [{"A": "1"}, {"A": "1"}, {"A": "2"}], "mixed": ["text", {"B": "1", "C": {"D": "2"}}]}
  > END
  $ plain small.json
  Host db1, database A, 2016-11-21T01:02:03Z
  small.json: 16 of 19 members answered, 838 bytes
  
    Collected  days ago
    Instance   databases known: 1.23456
    Machine    4 KiB memory, 1000 disk, 10 % free
    Low        Disk free 10 %
    No answer  1 of 19, besides 2 that need not
  
  Collected  2016-11-21T01:02:03Z
  own        1
  own        a line that is longer than the terminal is wide, which somebody might
             want to read to its end
  
  Platform  /platformInfo
    Host name    db1
    Memory       4 KiB (4096)
    Memory free  1 KiB (1024)  #####...............  25 %
    Disk         1000
    Disk free    99            ##..................  10 %
  
    Network  /platformInfo/networkInfoRaw
      lo:
        127.0.0.1
  
  Instance  /instanceInfo
    Databases  1.23...
  
  Database A  /databaseInfo/0
    Name  A
  
    Buffer pools  /databaseInfo/0/bufferpools
      Pool  Pages     Page size
      x         7  4 KiB (4096)
      \xe9\x95\xb7\xe3\x81\x84   NULL            12 (esc)
  
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
  
  Did not answer: 3 of 19
    The machine does not tell.
      /platformInfo/swapMemFree
    The option was not given.
      /customerInfo/name, /customerInfo/address
  
  Not all is shown: with --all it is, or one member whole with its POINTER behind
  the file.

Long tables and listings say what is left; wide ones, which columns do not fit; one member is shown whole.

  $ jq -nc '{list: ([range(30) | "l\(.)"] | join("\n")), rows: [range(25) | {a: "\(.)"}], text: ("x" * 300),
  >   wide: [range(4) as $row | [range(30) | {key: "column\(.)", value: "v\($row)"}] | from_entries],
  >   texts: [range(4) | {a: ("a" * 60), b: "\(.)", c: ("c" * 30)}],
  >   record: [{a: ("a" * 60), b: "1", c: ("c" * 30)}]}' >long.json
  $ plain long.json | grep -A 1 '\.\.\.'
        ... 300 bytes in all: /text
  
  --
    ... 18 more lines
  
  --
    ... 5 more rows
  
  --
    ... 22 more columns
      column8, column9, column10, column11, column12, column13, column14, column1...
  
  --
    aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa...  0  cccccccccccccccccccccccccccccc
    aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa...  1  cccccccccccccccccccccccccccccc
    aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa...  2  cccccccccccccccccccccccccccccc
    aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa...  3  cccccccccccccccccccccccccccccc
  
  $ plain --all long.json | grep -c '\.\.\.\|Not all'
  0
  [1]
  $ plain long.json /list | tail -n 1
  l29
  $ tarn show long.json /none
  tarn: long.json: has no /none
  [2]

How old it is is counted from now. A terminal without UTF-8 is shown ASCII, and nothing but that.

  $ for days in 0 1 3 -3; do
  >   echo "{\"collected\": \"$(date -u -d "$days days ago" +%FT%TZ)\"}" | tarn show | sed -n 4p
  > done
    Collected  today
    Collected  yesterday
    Collected  3 days ago
    Collected  in 3 days: a clock is wrong
  $ LC_ALL=C script -qc "tarn show small.json" typescript </dev/null >/dev/null
  $ grep -a 'free  \|NULL' typescript
    Memory free  1 KiB (1024)  #####...............  25 %\r (esc)
    Disk free    99            ##..................  10 %\r (esc)
      \\u{9577}\\u{3044}   NULL            12\r (esc)
  $ grep -caP '[^\x00-\x7f]' typescript
  0
  [1]

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
  -: no document of a collector, 17 bytes
  
  /0
    1
    x
  null
