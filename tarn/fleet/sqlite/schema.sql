-- A fleet's database in one file.
--
-- fact: from `since` on the documents of `host` show `value` at `place`, or nothing (NULL), until the next row of that
-- host and place. `void`: a document that came late shows that nothing changed here; the row before has that value, too.
-- latest: facts that change by themselves, the newest of each host and place. Each has a value of its own, which changes.
-- Moments are microseconds since 1970, UTC; what is below a second only keeps documents of one second apart.

CREATE TABLE host (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL UNIQUE
);

CREATE TABLE place (
  id INTEGER PRIMARY KEY,
  hash INTEGER NOT NULL,  -- SipHash-2-4 of the text
  text TEXT NOT NULL,     -- /databaseInfo[name=SALES]/bufferpools[BPNAME=main]/NPAGES
  pointer TEXT NOT NULL,  -- /databaseInfo/*/bufferpools/*/NPAGES
  scope TEXT NOT NULL     -- /databaseInfo[name=SALES]: documents without it say nothing about this place
);
CREATE INDEX place_hash ON place (hash);
CREATE INDEX place_pointer ON place (pointer);

CREATE TABLE value (
  id INTEGER PRIMARY KEY,
  hash INTEGER,  -- SipHash-2-4 of the text; NULL in a value of `latest`
  text TEXT NOT NULL,
  number REAL,            -- where the text is one
  sorted TEXT             -- what natural order compares, where that is not the text
);
CREATE INDEX value_hash ON value (hash) WHERE hash IS NOT NULL;

CREATE TABLE fact (
  host INTEGER NOT NULL,
  since INTEGER NOT NULL,
  place INTEGER NOT NULL,
  value INTEGER,
  void INTEGER NOT NULL,
  PRIMARY KEY (host, since, place)
) WITHOUT ROWID;
CREATE INDEX fact_place ON fact (place, host, since, value);

CREATE TABLE latest (
  host INTEGER NOT NULL,
  place INTEGER NOT NULL,
  since INTEGER NOT NULL,
  value INTEGER NOT NULL,
  PRIMARY KEY (host, place)
) WITHOUT ROWID;
CREATE INDEX latest_place ON latest (place);

CREATE TABLE document (
  id INTEGER PRIMARY KEY,
  hash BLOB NOT NULL UNIQUE,  -- SHA-256 of its bytes
  host INTEGER,               -- NULL when nothing tells
  moment INTEGER NOT NULL,    -- 0 when nothing tells
  file TEXT NOT NULL,
  bytes INTEGER NOT NULL,
  seen INTEGER NOT NULL,      -- tells path, size and time of the file
  state TEXT NOT NULL,        -- whole, cut, damaged, foreign
  problem TEXT NOT NULL,      -- why its facts were not taken; empty when they were
  line INTEGER NOT NULL,
  "column" INTEGER NOT NULL,
  host_from TEXT NOT NULL,    -- document, log
  time_from TEXT NOT NULL,    -- document, file, log
  engine TEXT NOT NULL,
  version TEXT NOT NULL,
  database TEXT NOT NULL,
  answered INTEGER NOT NULL,
  asked INTEGER NOT NULL,
  scopes BLOB NOT NULL        -- SipHash-2-4 of each scope that it holds, eight bytes each
);
CREATE INDEX document_host ON document (host, moment);
CREATE INDEX document_moment ON document (moment);
