Questions about a fleet. What they answer by themselves is shown in the manual, whose examples are run as well.

  $ cp -r "$TARN_FIXTURES/store" . && export TARN_FLEET=fleet.db
  $ tarn fleet load store
  4 new documents, 1 of them with a problem; 0 known from other files, 0 files seen before
  $ tarn fleet hosts --silent-for 1 | wc -l
  3
  $ tarn fleet hosts --silent-for 1 >hosts
  [1]
  $ tarn fleet hosts --problems | tr -s ' ' | sed "s,$PWD/,,"
  not whole cut db3 2026-11-20T01:55:40Z store/2026-11-20/015540-b802f3eeb5c574f7590d62ca849f9d6b.json:33:27
  $ tarn fleet drift --since 2030-01-01
  $ tarn fleet drift --since 2026-11-20T01:30:25.9+00:00 --json | head -1
  {"pointer": "/databaseInfo/*/bufferpools/*/NPAGES", "hosts": 1, "changes": 1}

Conditions: the first operator outside of brackets; numbers as numbers, versions in natural order; elements by name, by
number and by star; volatile facts, too.

  $ where() { tarn fleet where "$@" --json | jq -r '.host + " " + ([.facts[].value[:12]] | join(" "))'; }
  $ where '/databaseInfo[name=SALES]/bufferpools[BPNAME=main]/NPAGES>9000' '/instanceInfo/version<15.2'
  db1 32768 15.18
  db2 32768 15.18
  $ where '/databaseInfo/0/bufferpools[BPNAME=main]/NPAGES<9000'
  $ where '/instanceInfo/version<15'
  $ where '/instanceInfo/version>15' '/instanceInfo/version<16'
  db1 15.18 15.18
  db2 15.18 15.18
  $ where '/platformInfo/physMemFree>800000000' '*~MB'
  db1 900100200 max_connecti
  $ where '/instanceInfo/fixPack='
  db1 
  db2 
  $ where "/platformInfo/osName=' OR '1'='1" '/no/such~0'
  $ where '*~%_\'
  $ tarn fleet where platformInfo=1
  tarn: "platformInfo=1" is no condition: write POINTER=VALUE, or >, < or ~ for =
  [2]

History tells the value before; a place below which there is nothing has none.

  $ tarn fleet history db1 /databaseInfo[name=SALES]/bufferpools/* --json | jq -c '[.change, .place[-6:], .old, .new]'
  ["added","BPNAME",null,"main"]
  ["added","NPAGES",null,"16384"]
  ["added","GESIZE",null,"8192"]
  ["changed","NPAGES","16384","32768"]
  $ tarn fleet history db1 /instance
  $ tarn fleet history nobody
  tarn: no facts of a host "nobody" are known
  [2]

The archive: a file that was compressed is found, gives the same bytes, and is no other document; one that is gone is
told.

  $ cp store/2026-11-20/013025-*.json now.json
  $ "$TARN_FIXTURES/../../../deploy/collection-server/mirel-compress-store" store 1 && find store -name '*.json'
  $ tarn fleet get db1 | sed "s,$PWD/,,"
  store/2026-11-20/013025-04e95e69088f47a8b4402583d1700d05.json.zst
  $ tarn fleet get db1 -o - | cmp - now.json
  $ tarn fleet load store
  0 new documents, 0 of them with a problem; 4 known from other files, 0 files seen before
  $ cp -r store twice && tarn fleet load twice store && tarn fleet load twice store
  0 new documents, 0 of them with a problem; 4 known from other files, 4 files seen before
  0 new documents, 0 of them with a problem; 0 known from other files, 8 files seen before
  $ mv store gone && tarn fleet load twice && mv gone store && tarn fleet load twice store
  0 new documents, 0 of them with a problem; 4 known from other files, 0 files seen before
  0 new documents, 0 of them with a problem; 4 known from other files, 4 files seen before
  $ rm -r twice && tarn fleet load store
  0 new documents, 0 of them with a problem; 4 known from other files, 0 files seen before
  $ tarn fleet get db1 --at 2026-11-18
  tarn: no document of a host "db1" is known up to then
  [2]
  $ rm store/2026-11-19/020451-*
  $ tarn fleet get db2 2>&1 | sed "s,$PWD/,,"
  tarn: store/2026-11-19/020451-11544cb3c4f8fff1cdfb24ffc837a6b9.json.zst: is not there any more

Each question says its statement, with its values as literals, and asks nothing.

  $ tarn fleet spread "/a'b" --sql | grep -c "pointer = '/a''b'"
  1
  $ for question in hosts 'where *=x' 'history db1' 'drift --since 2026-11-20' 'get db1'; do
  >   tarn fleet $question --sql | sqlite3 fleet.db >answer || echo "$question"
  > done

What cannot be asked.

  $ tarn fleet hosts --from missing.db
  tarn: missing.db: * (glob)
  [2]
  $ tarn fleet hosts --from store/2026-11-20/015540-b802f3eeb5c574f7590d62ca849f9d6b.json
  tarn: store/2026-11-20/015540-b802f3eeb5c574f7590d62ca849f9d6b.json: * (glob)
  [2]
  $ tarn fleet drift --since yesterday
  tarn: "yesterday" is no date: write 2026-11-21 or 2026-11-21T10:20:30Z
  [2]
