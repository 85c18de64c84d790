-- The newest document of each host, and how many there are. A document from the future, or one of which the server's
-- log knows another host, stands for its host only where there is no better one.
SELECT host, moment, file, state, problem, engine, version, database, answered, asked, documents
FROM (
  SELECT host, moment, file, state, problem, engine, version, database, answered, asked
  FROM document
  -- Which one it is takes few columns of all documents; the others are read of that one only.
  WHERE (host, hash) IN (
    SELECT host, hash
    FROM document
    WHERE host != ''
    ORDER BY host, problem IN ('future', 'other host'), moment DESC, hash DESC
    LIMIT 1 BY host
  )
  ORDER BY host, written DESC
  LIMIT 1 BY host
) AS newest
ANY INNER JOIN (
  SELECT host, uniqExact(hash) AS documents FROM document WHERE host != '' GROUP BY host
) AS counted USING host
ORDER BY host
