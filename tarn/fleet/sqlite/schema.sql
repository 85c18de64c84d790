-- A fleet's database in one file.
--
-- fact: from `since` on the documents of `host` show `value` at `place`, or nothing (NULL), until the next row of that
-- host and place. `void`: a document that came late shows that nothing changed here; the row before has that value, too.
-- present: what the newest row of each host and place shows, where it shows something.
-- latest: facts that change by themselves, the newest of each host and place.
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
  hash INTEGER NOT NULL,  -- SipHash-2-4 of the text
  text TEXT NOT NULL,
  number REAL,            -- where the text is one
  sorted TEXT             -- what natural order compares, where that is not the text
);
CREATE INDEX value_hash ON value (hash);

CREATE TABLE fact (
  host INTEGER NOT NULL,
  since INTEGER NOT NULL,
  place INTEGER NOT NULL,
  value INTEGER,
  void INTEGER NOT NULL,
  PRIMARY KEY (host, since, place)
) WITHOUT ROWID;

CREATE TABLE present (
  place INTEGER NOT NULL,
  host INTEGER NOT NULL,
  value INTEGER NOT NULL,
  PRIMARY KEY (place, host)
) WITHOUT ROWID;

CREATE TABLE latest (
  host INTEGER NOT NULL,
  place INTEGER NOT NULL,
  since INTEGER NOT NULL,
  text TEXT NOT NULL,
  number REAL,
  sorted TEXT,
  PRIMARY KEY (host, place)
) WITHOUT ROWID;
CREATE INDEX latest_place ON latest (place);

CREATE TABLE document (
  id INTEGER PRIMARY KEY,
  hash BLOB NOT NULL,         -- SHA-256 of its bytes
  host INTEGER,               -- NULL when nothing tells
  moment INTEGER NOT NULL,    -- 0 when nothing tells
  folder INTEGER NOT NULL,    -- a value, with the slash behind it
  file TEXT NOT NULL,         -- its name in the folder
  bytes INTEGER NOT NULL,
  seen INTEGER NOT NULL,      -- tells path, size and time of the file
  state TEXT NOT NULL,        -- whole, cut, damaged, foreign
  problem TEXT NOT NULL,      -- why its facts were not taken; empty when they were
  line INTEGER NOT NULL,
  "column" INTEGER NOT NULL,
  host_from TEXT,             -- log, empty when nothing tells; NULL: the document itself
  time_from TEXT,             -- file, log, or empty; NULL: the document itself
  engine INTEGER NOT NULL,    -- these three are values, too
  version INTEGER NOT NULL,
  database INTEGER NOT NULL,
  answered INTEGER NOT NULL,
  asked INTEGER NOT NULL,
  scopes BLOB NOT NULL        -- SipHash-2-4 of each scope that it holds, eight bytes each
);
CREATE INDEX document_hash ON document (substr(hash, 1, 8));  -- enough to find it
CREATE INDEX document_host ON document (host, moment);

-- Files that need not be read while another one is there, which has the same document.
CREATE TABLE copy (
  seen INTEGER PRIMARY KEY,
  other TEXT NOT NULL
);
