What the templates ask and what documents hold is what the table knows, and nothing else; the page is the table's.

  $ SOURCE=$TESTDIR/../.. PATH=$TARN_BUILD/tarn.dir:$PATH
  $ cat >places.py <<'END'
  > import json, re, sys
  > class Members(list):
  >     pass
  > def places(value, at=""):
  >     if not isinstance(value, Members):
  >         for below in value if isinstance(value, list) else []:
  >             yield from places(below, at + "/*")
  >         return
  >     seen = []
  >     for name, below in value:
  >         seen.append(name)
  >         loop = re.fullmatch(r"\$foreach db \[(.*)\]", name)
  >         place = f"{at}/{loop[1] if loop else name}" + (f"#{seen.count(name)}" if seen.count(name) > 1 else "")
  >         yield place
  >         yield from places(below, place + ("/*" if loop else ""))
  > for file in sys.argv[1:]:
  >     print(*places(json.load(open(file), object_pairs_hook=Members)), sep="\n")
  > END
  $ tarn template >default.json
  $ /usr/bin/python3 places.py default.json "$SOURCE/deploy/collection-server/template.json" \
  >   "$TARN_FIXTURES/sample.json" "$TARN_FIXTURES/postgresql.json" | LC_ALL=C sort -u >asked
  $ grep '^/' "$SOURCE/tarn/facts/facts.txt" | LC_ALL=C sort | diff asked -
  $ tarn_manual <"$SOURCE/docs/facts.md.in" | diff "$SOURCE/docs/facts.md" -

A table that is not in its form is refused, with the line.

  $ refuse() { printf '%b\n' "$@" | tarn_facts_pack; }
  $ refuse '/a' '  title: A'
  tarn/facts/facts.txt:1: /a has no meaning
  [1]
  $ refuse '# -' '/a' '  title: A' '  meaning: B' '  colour: red'
  tarn/facts/facts.txt:5: no such key: colour
  [1]
  $ refuse '/a' '  title: A' '  title: B'
  tarn/facts/facts.txt:3: title is said twice
  [1]
  $ refuse '/a' '  title: A' '  meaning: B' '/a'
  tarn/facts/facts.txt:4: /a stands here twice
  [1]
  $ refuse '/a' '  unit: miles'
  tarn/facts/facts.txt:2: no such unit: miles
  [1]
  $ refuse '/a' '  chart: pie'
  tarn/facts/facts.txt:2: a chart is "bars LABEL VALUE" or "share PLACE"
  [1]
  $ refuse '/a' '  kind: later' '[later]'
  tarn/facts/facts.txt:2: no such kind above: later
  [1]
  $ refuse '  title: A'
  tarn/facts/facts.txt:1: neither a place, nor a kind in brackets, nor an indented line of one
  [1]
  $ refuse '/a' '  title:'
  tarn/facts/facts.txt:2: no "key: value"
  [1]
