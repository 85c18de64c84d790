-- Pointers whose facts changed since a moment, on how many hosts, and how often. The oldest rows of a host are its first
-- document, which is no change.
WITH first AS (
  SELECT id AS host, (SELECT min(since) FROM fact WHERE fact.host = host.id) AS moment FROM host
), changed AS (
  SELECT place.pointer, fact.host, count(*) AS changes
  FROM first
  CROSS JOIN fact ON fact.host = first.host AND fact.since >= CAST({since} AS INTEGER) AND fact.since > first.moment
  JOIN place ON place.id = fact.place
  WHERE NOT fact.void
  GROUP BY place.pointer, fact.host
)
SELECT pointer, count(*) AS hosts, sum(changes)
FROM changed
GROUP BY pointer
ORDER BY hosts DESC, pointer;
