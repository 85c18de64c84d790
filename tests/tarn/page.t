A page of what is whole is written; the document is told to be cut. The page is its owner's alone.

  $ cp "$TARN_FIXTURES"/*.json .
  $ tarn page cut.json -o cut.html
  tarn: cut.json:53:31: cut in /databaseInfo/0/bufferpools/0: ends inside an object
  [1]
  $ grep -o 'The document ends.*shown' cut.html
  The document ends inside an object at line 53, column 31 in /databaseInfo/0/bufferpools/0. What is whole of it is shown
  $ stat -c %a cut.html
  600

An input is never written over, and what cannot be read or written is trouble.

  $ tarn page sample.json later.json -o ./later.json
  tarn: ./later.json: is an input, which is never written over
  [2]
  $ tarn page none.json -o page.html
  tarn: none.json: No such file or directory
  [2]
  $ tarn page sample.json -o none/page.html
  tarn: none/page.html: No such file or directory
  [2]
  $ ls *.html
  cut.html

The policy allows the one script and the one style that the page has, by their hashes.

  $ tarn page - -o - <sample.json >page.html
  $ python3 - <<'END'
  > import base64, hashlib, re
  > page = open("page.html").read()
  > for kind in "script", "style":
  >     text = re.findall(f"<{kind}>(.*?)</{kind}>", page, re.S)[-1]
  >     digest = base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()
  >     print(kind, f"{kind}-src 'sha256-{digest}'" in page)
  > END
  script True
  style True

  $ tarn diff --facts <(printf '/x\n  title: X\n  meaning: X.\n  volatile: yes\n') <(echo '{"x": "1"}') <(echo '{"x": "2"}')
