One call, one file; the original comes back byte for byte, and what was redacted stays as it is.

  $ cd "$TARN_FIXTURES" && O=$CRAMTMP
  $ tarn redact sample.json -o $O/out.json --map $O/map
  tarn: redacted * (glob)
  $ stat -c %a $O/out.json $O/map
  600
  600
  $ tarn restore $O/out.json --map $O/map 2>/dev/null | cmp - sample.json
  $ tarn redact $O/out.json | cmp - $O/out.json
  tarn: redacted nothing
  $ tarn redact $O/out.json --map $O/map | cmp - $O/out.json
  tarn: redacted nothing

What a document declares is found in keys, in any letter case, inside URLs and listings, in every document of the call.

  $ cat >$O/a.json <<'X'
  > {"platformInfo": {"osSystemName": "db01.corp.example"},
  >  "customerInfo": {"name": "Zoë \"Z\" Berg", "company": "ACME (Nord)"},
  >  "DB01": "jdbc:x://ann:s3cr3t-1@db01.corp.example:1/shop", "zoë": "ZOË \"Z\" BERG of acme (nord)",
  >  "list": "HOME=/home/ann\nPWD=s3cr3t-1;x\ninet 10.1.2.3/8 and 10.1.9.9, ANN_HOME, corp.example"}
  > X
  $ echo '{"other": "db01 and 10.1.2.3"}' >$O/b.json
  $ tarn redact $O/a.json $O/b.json -o $O/both
  tarn: redacted 3 ipv4, 5 host, 3 user, 4 customer, 2 secret
  $ cat $O/both/a.json $O/both/b.json
  {"platformInfo": {"osSystemName": "redacted-host-1"},
   "customerInfo": {"name": "redacted-customer-1", "company": "redacted-customer-2)"},
   "REDACTED-HOST-2": "jdbc:x://redacted-user-1:redacted-secret-1@redacted-host-1:1/shop", "zoë": "REDACTED-CUSTOMER-1 of redacted-customer-2b)",
   "list": "HOME=/home/redacted-user-1\nPWD=redacted-secret-1;x\ninet 240.1.1.1/8 and 240.1.2.1, REDACTED-USER-1_HOME, redacted-host-3"}
  {"other": "redacted-host-2 and 240.1.1.1"}

Kinds are chosen; words are added.

  $ tarn redact $O/a.json --only ipv4 --also shop | tail -n 2 | head -c 100
  tarn: redacted 2 ipv4, 1 customer
   "DB01": "jdbc:x://ann:s3cr3t-1@db01.corp.example:1/redacted-customer-1", "zoë": "ZOË \"Z\" BERG o (no-eol)
  $ tarn redact $O/b.json --keep ipv4 --keep bogus
  tarn: --keep: bogus not in {customer,email,host,ipv4,ipv6,mac,secret,user}, see tarn --help
  [2]

Nothing is written of a document that is not whole, over an input, with a map that others could read, or on a full disk.

  $ tarn redact cut.json sample.json -o $O/none
  tarn: cut.json:53:31: cut in /databaseInfo/0/bufferpools/0: ends inside an object
  [1]
  $ test -e $O/none
  [1]
  $ tarn redact $O/a.json -o $O/a.json
  tarn: */a.json: is an input (glob)
  [2]
  $ tarn redact $O/a.json -o $O/new --map $O/./new
  tarn: */new: is the map (glob)
  [2]
  $ tarn restore $O/out.json -o $O/map --map $O/map
  tarn: */map: is the map (glob)
  [2]
  $ chmod 644 $O/map && tarn redact $O/a.json --map $O/map
  tarn: */map: others have rights on it; a map has mode 0600 (glob)
  [2]
  $ chmod 600 $O/map && echo '{"kind": "host"}' >>$O/map && tarn restore sample.json --map $O/map
  tarn: */map: line *: not a line of a map (glob)
  [2]
  $ tarn redact $O/a.json 2>&1 >/dev/full | grep -v redacted
  tarn: standard output: No space left on device
