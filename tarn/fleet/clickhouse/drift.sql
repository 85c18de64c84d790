-- Pointers whose facts changed since a moment, on how many hosts, and how often. A host's first document is no change.
SELECT pointer, uniqExact(host) AS hosts, count()
FROM (
  SELECT pointer, place, host, since
  FROM fact
  WHERE since >= toInt64({since})
    AND (host, since) NOT IN (SELECT host, min(moment) FROM document WHERE host != '' AND problem = '' GROUP BY host)
  GROUP BY pointer, place, host, since
  HAVING argMax(void, version) = 0
)
GROUP BY pointer
ORDER BY hosts DESC, pointer
