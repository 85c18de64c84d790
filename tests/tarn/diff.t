The status tells whether anything changed; what changes by itself only counts when asked for.

  $ cd "$TARN_FIXTURES"
  $ tarn diff sample.json sample.json
  $ sed 's/"2026-11-21"/"2026-11-28"/; s/"22685339648"/"1"/' sample.json | tarn diff sample.json -
  $ sed 's/"2026-11-21"/"2026-11-28"/' sample.json | tarn diff --all sample.json -
  /tarn_collection_time: 2026-11-21 → 2026-11-28
  [1]
  $ tarn diff sample.json later.json >/dev/null
  [1]

What came, went and changed as objects: values as strict JSON, and the columns that name the row.

  $ tarn diff --json <(printf '{"t": [{"ID": 1, "V": "a\tb"}, {"ID": 2, "V": "c"}], "n": "1"}') - <<'END'
  > {"t": [{"ID": 3, "V": {}}, {"ID": 1, "V": "a\u0001"}], "n": null}
  > END
  {"pointer": "/t/1", "row": {"ID": 2}, "change": "removed", "old": {"ID": 2, "V": "c"}, "new": null}
  {"pointer": "/t/0", "row": {"ID": 3}, "change": "added", "old": null, "new": {"ID": 3, "V": {}}}
  {"pointer": "/t/1/V", "row": {"ID": 1}, "change": "changed", "old": "a\tb", "new": "a\u0001"}
  {"pointer": "/n", "row": null, "change": "changed", "old": "1", "new": null}
  [1]
  $ tarn diff --json sample.json later.json | jq -r '.change, .row.TYPENAME // empty' | xargs
  changed changed removed DOUBLE added BIT changed changed

What is not whole is told and compared as far as it goes; what cannot be read is trouble.

  $ tarn diff cut.json sample.json | head -n 1
  tarn: cut.json:53:31: cut in /databaseInfo/0/bufferpools/0: ends inside an object
  + /databaseInfo/0/bufferpools[BPNAME=main]/NPAGES: 500
  $ tarn diff sample.json none.json
  tarn: none.json: No such file or directory
  [2]
  $ tarn diff /dev/null sample.json
  tarn: /dev/null:1:1: cut: is empty
  [1]
  $ tarn diff - - </dev/null
  tarn: only one document can be standard input
  [2]

Nothing foreign reaches the terminal as a control sequence.

  $ tarn diff <(echo '{}') hostile.json | LC_ALL=C grep -c $'[\x01-\x09\x0b-\x1f\x7f]\|\xe2\x80\xae'
  0
  [1]
  $ tarn diff --json <(echo '{}') <(printf '{"\x7f": "\xc2\x9b2J\xe2\x80\xaeé😀\xf3\xa0\x81\x81"}')
  {"pointer": "/\u007f", "row": null, "change": "added", "old": null, "new": "\u009b2J\u202eé😀\udb40\udc41"}
  [1]
