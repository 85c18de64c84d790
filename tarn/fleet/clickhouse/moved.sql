-- Documents that stand in another file now.
INSERT INTO document
SELECT hash, host, moment, arrayElement([{files}], indexOf([{hashes}], lower(hex(hash)))) AS file, bytes,
  arrayElement([{seen}], indexOf([{hashes}], lower(hex(hash)))) AS seen, state, problem, line, column, hostFrom, timeFrom,
  engine, version, database, answered, asked, scopes, toUInt64({written}) AS written
FROM document
WHERE hash IN ({keys})
ORDER BY hash, written DESC
LIMIT 1 BY hash
