-- The newest document of each host, and how many there are. A document from the future, or one of which the server's
-- log knows another host, stands for its host only where there is no better one.
WITH counted AS (
  SELECT host, count(*) AS documents FROM document WHERE host IS NOT NULL GROUP BY host
), newest AS (
  SELECT documents, coalesce(
    (SELECT rowid FROM document WHERE host = counted.host AND problem NOT IN ('future', 'other host')
     ORDER BY moment DESC, hash DESC LIMIT 1),
    (SELECT rowid FROM document WHERE host = counted.host ORDER BY moment DESC, hash DESC LIMIT 1)) AS document
  FROM counted
)
SELECT host.name, moment, folder.text || file, state, problem, engine.text, version.text, database.text, answered, asked,
  documents
FROM newest
JOIN document ON document.rowid = newest.document
JOIN host ON host.id = document.host
JOIN value AS folder ON folder.id = folder
JOIN value AS engine ON engine.id = engine
JOIN value AS version ON version.id = version
JOIN value AS database ON database.id = database
ORDER BY host.name;
