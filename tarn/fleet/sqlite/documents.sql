-- The documents of a host up to a moment whose facts were taken, the newest first.
SELECT moment, file, lower(hex(hash)), bytes
FROM document
WHERE host = (SELECT id FROM host WHERE name = {host}) AND moment <= CAST({until} AS INTEGER)
  AND state = 'whole' AND problem = ''
ORDER BY moment DESC, hash;
