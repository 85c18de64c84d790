-- The documents of a host up to a moment whose facts were taken, the newest first.
SELECT moment, folder.text || file, lower(hex(document.hash)), bytes
FROM document JOIN value AS folder ON folder.id = folder
WHERE host = (SELECT id FROM host WHERE name = {host}) AND moment <= CAST({until} AS INTEGER)
  AND state = 'whole' AND problem = ''
ORDER BY moment DESC, document.hash;
