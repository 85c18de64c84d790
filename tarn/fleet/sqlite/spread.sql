-- The values that hold now at a pointer, on how many hosts, and in how many facts.
WITH wanted AS (
  SELECT id FROM place WHERE pointer = {pointer} AND text GLOB {glob}
  UNION ALL
  SELECT id FROM place WHERE {pointer} = '*'
), present AS (
  -- The newest row of each host and place. SQLite takes the other columns from the row that max() found.
  SELECT host, value, max(since) FROM fact WHERE place IN wanted GROUP BY place, host
  UNION ALL
  SELECT host, value, since FROM latest WHERE place IN wanted
), counted AS (
  SELECT value, count(DISTINCT host) AS hosts, count(*) AS facts FROM present WHERE value IS NOT NULL GROUP BY value
)
SELECT value.text, hosts, facts
FROM counted JOIN value ON value.id = counted.value
ORDER BY hosts DESC, value.text;
