-- Pointers whose facts changed since a moment, on how many hosts, and how often. A host's first document is no change.
SELECT pointer, uniqExact(host) AS hosts, count()
FROM (
  SELECT pointer, host, since, sipHash64(place) AS key
  FROM fact
  PREWHERE since >= toInt64({since})
  WHERE (host, since) NOT IN (SELECT host, min(moment) FROM document WHERE host != '' AND problem = '' GROUP BY host)
  GROUP BY pointer, host, since, key
  HAVING argMax(void, version) = 0
)
GROUP BY pointer
ORDER BY hosts DESC, pointer
